// What the tests of the drivers share: a board at its power-on state, what the drivers print, and what they report to
// the log. The board is one for the whole program, since the converter's bus stays open to the end of the process.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Frameworks/Utilities/Enumerations.h"
#include "Tests/Support/ExactTime.h"

struct LogCall {
    std::string text;
    LogLevel level = NO_LOG_LEVEL;
    ControllerType origin = NO_CONTROLLER;

    friend bool operator==(const LogCall&, const LogCall&) = default;
};

std::ostream& operator<<(std::ostream& stream, const LogCall& call);

struct Printed {
    std::string output;
    std::string error;

    friend bool operator==(const Printed&, const Printed&) = default;
};

std::ostream& operator<<(std::ostream& stream, const Printed& printed);

// What the action prints on the two streams.
Printed PrintedBy(const std::function<void()>& action);

inline const Printed Silence;
inline Printed OnOutput(const std::string& text) { return {text, ""}; }
inline Printed OnError(const std::string& text) { return {"", text}; }

class DriverTest : public ::testing::Test {
protected:
    using Texts = std::vector<std::string>;

    // Real: for players that are processes, and for signals; then twenty times as fast as the clock.
    enum class Pace { Exact, Real };
    explicit DriverTest(Pace pace = Pace::Exact);
    ~DriverTest() override;

    static Bench::Board& Board();
    // What the drivers wrote to the board since the last call.
    static Texts TakeTrace();
    static void SetFault(const std::string& text);
    static void ClearFault(const std::string& name);
    // Makes the nth call from now fail.
    static void FailCall(const std::string& kind, int n, int error);
    // What went to the log since the last call.
    static std::vector<LogCall> TakeLog();
    // How many descriptors this process has open.
    static std::size_t OpenFiles();
    // Nothing is written for a second.
    static void ExpectNoTrace();
    static double SecondsOf(const std::function<void()>& action);

private:
    std::optional<ExactTime> m_exactTime;
};
