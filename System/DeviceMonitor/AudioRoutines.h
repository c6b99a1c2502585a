// Requests of a hardware test to the sound of the remote indicator. The remote indicator acts on its own thread, so
// each request sleeps afterwards until that has finished. If a request cannot be sent, it is logged and false is
// returned without a sleep. Any thread.
#pragma once

#include "Frameworks/Utilities/StdString.h"

bool TurnOffAudio();                        // 3 seconds
bool PlayAudio(const StdString& fileName);  // 1 second
bool RestartAudio();                        // 3 seconds
