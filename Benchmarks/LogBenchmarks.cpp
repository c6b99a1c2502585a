#include "Benchmarks/LogBenchmarks.h"

#include <benchmark/benchmark.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <pthread.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>

#include "Benchmarks/CountingController.h"
#include "Benchmarks/Stopwatch.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Messaging/MessagingControl.h"

namespace {

constexpr int Lines = 2000;
constexpr int SingleLines = 1000;
constexpr int DroppedLines = 1000000;
constexpr char Text[] = "MeasurementControl::Run  Unable to initialize thread";

enum class Pace { BURST, ONE_BY_ONE };

// Sums the time of the sender's thread for the lines alone, with a pause after each.
template <class Line, class Pause>
double SecondsEachLine(const Line& line, const Pause& pause) {
    double seconds = 0.0;
    for (int written = 0; written < SingleLines; ++written) {
        const double start = Now(TimeOf::THIS_THREAD);
        line();
        seconds += Now(TimeOf::THIS_THREAD) - start;
        pause();
    }
    return seconds / SingleLines;
}

// The way from the sender to the router and to a controller that gets the lines.
class LogPath {
public:
    LogPath() {
        MessageController::SetLogLevel(INFORMATIONAL_LOG_LEVEL);
        MessageBase::SetMessagingControl(&m_router);
        m_logging = std::make_unique<CountingController>(ControllerNames[LOGGING_CONTROL].CString(), m_countdown,
                                                         LOGGING_DATA_MESSAGE);
        m_logging->WaitUntilReady();
        m_router.RegisterCommand(m_logging.get(), PRIME_SYSTEM);  // enters the name
        Expect(1);
        Write();
        Wait();
    }

    ~LogPath() {
        MessageBase::SetMessagingControl(nullptr);
        m_router.Kill();
        pthread_join(m_router.GetThreadId(), nullptr);
    }

    LogPath(const LogPath&) = delete;
    LogPath& operator=(const LogPath&) = delete;

    void Expect(int lines) { m_countdown.Expect(lines); }
    static void Write() { MessageController::LogMessage(Text, ERROR_LOG_LEVEL, LOGGING_CONTROL); }
    void Wait() { m_countdown.Wait(); }

private:
    Countdown m_countdown;
    std::unique_ptr<CountingController> m_logging;
    MessagingControl m_router;
};

double LogPassingByPeer(Pace pace, bool isFlushed) {
    const std::string path = "/tmp/benchmarks-" + std::to_string(getpid()) + ".log";
    double seconds = 0.0;
    {
        spdlog::logger logger("peer", std::make_shared<spdlog::sinks::basic_file_sink_mt>(path, true));
        logger.set_pattern("UTC %Y-%m-%d %H:%M:%S.%F :: %v");
        if (isFlushed) {
            logger.flush_on(spdlog::level::trace);
        }
        const auto line = [&logger] { logger.error(Text); };
        seconds = pace == Pace::BURST ? SecondsEach(Lines, line) : SecondsEachLine(line, [] {});
    }
    std::remove(path.c_str());
    return seconds;
}

}  // namespace

double LogPassingOurs() {
    LogPath log;
    log.Expect(Lines);
    const double seconds = SecondsEach(Lines, LogPath::Write);
    log.Wait();
    return seconds;
}

double LogPassingSpdlog() { return LogPassingByPeer(Pace::BURST, false); }

double LogSingleOurs() {
    LogPath log;
    log.Expect(1);
    return SecondsEachLine(LogPath::Write, [&log] {
        log.Wait();
        log.Expect(1);
    });
}

double LogSingleSpdlog() { return LogPassingByPeer(Pace::ONE_BY_ONE, false); }

double LogSingleFlushedSpdlog() { return LogPassingByPeer(Pace::ONE_BY_ONE, true); }

double LogDroppedOurs() {
    MessageController::SetLogLevel(INFORMATIONAL_LOG_LEVEL);
    return SecondsEach(DroppedLines, [] {
        MessageController::LogMessage(Text, DEBUG_LOG_LEVEL, LOGGING_CONTROL);
        benchmark::ClobberMemory();
    });
}

// The least that a check of a level can cost: an integer comparison and a branch that is not taken.
double CompareIntegers() {
    static int limit = INFORMATIONAL_LOG_LEVEL;
    static int passed = 0;
    benchmark::DoNotOptimize(&limit);
    benchmark::DoNotOptimize(&passed);
    return SecondsEach(DroppedLines, [] {
        if (limit >= DEBUG_LOG_LEVEL) [[unlikely]] {
            passed = limit;
        }
        benchmark::ClobberMemory();
    });
}
