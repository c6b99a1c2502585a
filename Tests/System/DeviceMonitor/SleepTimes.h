// The seconds of each call of sleep on this thread, in order. Replaces libc's sleep in this test program, and still
// sleeps.
#pragma once

#include <vector>

std::vector<unsigned>& SleepTimes();
