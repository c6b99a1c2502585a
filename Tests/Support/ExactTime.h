// A test in exact time: its threads run one at a time, in an order that is the same each time, and the board's clock
// goes on only while all of them wait. So nothing depends on the machine's load, and waiting costs nothing.
#pragma once

#include <gmock/gmock.h>

#include "Bench/Deterministic/Simulation.h"
#include "Tests/Support/BoardFixture.h"

// A member of a fixture on a board with BoardSetup::exact, before all members that have threads; these end their
// threads first.
class ExactTime {
public:
    ExactTime() { Bench::Simulation::Begin(); }
    ~ExactTime() { Bench::Simulation::EndAfterThreads(); }
    ExactTime(const ExactTime&) = delete;
    ExactTime& operator=(const ExactTime&) = delete;
};

// A board without noise, in exact time. The members of a subclass end their threads.
class ExactBoardTest : public BoardTest {
protected:
    ExactBoardTest() : BoardTest(QuietInExactTime()) {}

private:
    ExactTime m_exactTime;
};

// A time in seconds that is a wait of that many, with no more than the cost of the calls around it.
inline auto IsWaitOf(double seconds) {
    return testing::AllOf(testing::Ge(seconds - 1e-9), testing::Lt(seconds + 0.001));
}
