// What a test of the board asks of the remote indicator's sound. The indicator has a thread of its own, so each request
// sleeps long enough for it to act. False, with a line in the log and without the sleep, where the request can't be
// sent. Any thread.
#pragma once

#include "Frameworks/Utilities/StdString.h"

bool TurnOffAudio();                        // 3 seconds
bool PlayAudio(const StdString& fileName);  // 1 second
bool RestartAudio();                        // 3 seconds
