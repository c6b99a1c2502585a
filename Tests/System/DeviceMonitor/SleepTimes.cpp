#include "Tests/System/DeviceMonitor/SleepTimes.h"

#include <dlfcn.h>
#include <unistd.h>

std::vector<unsigned>& SleepTimes() {
    static thread_local std::vector<unsigned> times;
    return times;
}

extern "C" unsigned sleep(unsigned seconds) {
    using Sleep = unsigned (*)(unsigned);
    static const auto next = reinterpret_cast<Sleep>(dlsym(RTLD_NEXT, "sleep"));
    SleepTimes().push_back(seconds);
    return next(seconds);
}
