// The yardstick of the machine: how long two threads take to hand a message to each other and back.
#pragma once

#include <vector>

namespace Bench {

// Real seconds of each of so many round trips between this thread and one that it makes and ends, through two queues of
// a mutex, a condition variable and a deque each.
std::vector<double> RoundTrips(int count);

}  // namespace Bench
