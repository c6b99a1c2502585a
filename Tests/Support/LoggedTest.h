// A test with a router that reads the log lines of TestInterface.
#pragma once

#include <string>
#include <vector>

#include "Tests/Support/LogReader.h"

class LoggedTest : public testing::Test {
protected:
    ~LoggedTest() override { m_log.EndRouter(); }

    std::vector<std::string> Lines() { return m_log.Lines(); }

private:
    LogReader m_log;
    CapturingController m_testInterface{ControllerNames[TEST_INTERFACE]};
};
