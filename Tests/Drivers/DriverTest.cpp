#include "Tests/Drivers/DriverTest.h"

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <mutex>
#include <ostream>
#include <utility>

#include "Frameworks/Utilities/Report.h"

namespace {

std::mutex logMutex;
std::vector<LogCall> logCalls;

void Collect(const StdString& text, LogLevel level, ControllerType origin) {
    const std::lock_guard lock(logMutex);
    logCalls.push_back({text.Text(), level, origin});
}

Bench::BoardSetup QuietBoard(bool exact) {
    Bench::BoardSetup setup;
    setup.speed = 20.0;
    setup.noise = false;
    if (exact) {
        setup.exact.emplace();
    }
    return setup;
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const LogCall& call) {
    return stream << '"' << call.text << "\" level " << call.level << " origin " << call.origin;
}

std::ostream& operator<<(std::ostream& stream, const Printed& printed) {
    return stream << "output \"" << printed.output << "\", error \"" << printed.error << '"';
}

Printed PrintedBy(const std::function<void()>& action) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    action();
    Printed printed;
    printed.output = testing::internal::GetCapturedStdout();
    printed.error = testing::internal::GetCapturedStderr();
    return printed;
}

DriverTest::DriverTest(Pace pace) {
    Board().Reset(QuietBoard(pace == Pace::Exact));
    if (pace == Pace::Exact) {
        m_exactTime.emplace();
    }
    TakeLog();
    SetReportFunction(Collect);
}

DriverTest::~DriverTest() { SetReportFunction(nullptr); }

Bench::Board& DriverTest::Board() {
    static const Bench::TemporaryBoard board(QuietBoard(false));
    return board.Get();
}

DriverTest::Texts DriverTest::TakeTrace() {
    Texts trace = Board().Trace();
    Board().ClearTrace();
    return trace;
}

void DriverTest::SetFault(const std::string& text) {
    std::string error;
    ASSERT_TRUE(Board().SetFault(text, error)) << error;
}

void DriverTest::ClearFault(const std::string& name) {
    std::string error;
    ASSERT_TRUE(Board().ClearFault(name, error)) << error;
}

void DriverTest::FailCall(const std::string& kind, int n, int error) {
    ASSERT_TRUE(Board().FailCall(kind, n, error)) << kind;
}

std::vector<LogCall> DriverTest::TakeLog() {
    const std::lock_guard lock(logMutex);
    return std::exchange(logCalls, {});
}

void DriverTest::ExpectNoTrace() {
    const double end = Board().Seconds() + 1.0;
    EXPECT_TRUE(Board().WaitUntil([end] { return Board().Seconds() >= end; }));
    EXPECT_EQ(Board().Trace(), Texts{});
}

double DriverTest::SecondsOf(const std::function<void()>& action) {
    const double start = Board().Seconds();
    action();
    return Board().Seconds() - start;
}

std::size_t DriverTest::OpenFiles() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}
