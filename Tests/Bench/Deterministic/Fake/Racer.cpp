// Two threads that count in exact time, a simulated second apart: with a lock, or without as the argument "race" says.
// In a build with the thread sanitizer the second way ends with a report.
#include <cstring>
#include <mutex>
#include <thread>

#include "Bench/Board/Board.h"
#include "Tests/Support/ExactTime.h"

namespace {

int Count(bool locks) {
    std::mutex mutex;
    int counted = 0;
    const auto count = [&](int second) {
        std::this_thread::sleep_for(std::chrono::seconds(second));
        std::unique_lock<std::mutex> lock(mutex, std::defer_lock);
        if (locks) {
            lock.lock();
        }
        ++counted;
    };
    std::thread first(count, 1);
    std::thread second(count, 2);
    first.join();
    second.join();
    return counted;
}

}  // namespace

int main(int arguments, char** values) {
    Bench::BoardSetup setup;
    setup.exact.emplace();
    const Bench::TemporaryBoard board(setup);
    const ExactTime time;
    return Count(arguments < 2 || std::strcmp(values[1], "race") != 0);
}
