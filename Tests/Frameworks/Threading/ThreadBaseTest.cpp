#include "Frameworks/Threading/ThreadBase.h"

#include <gtest/gtest.h>
#include <sched.h>

#include <atomic>
#include <cerrno>
#include <string>

#include "Frameworks/Utilities/Report.h"
#include "Tests/Support/ImpossibleStack.h"

namespace {

class SmallThread : public ThreadBase {
public:
    std::int32_t Run() override {
        Init();
        SetPriority(-1);
        idSeenInside = GetThreadId();
        return 42;
    }
    void Kill() override {}

    pthread_t idSeenInside = 0;
};

class WaitingThread : public ThreadBase {
public:
    std::int32_t Run() override {
        while (!mayEnd) {
            sched_yield();
        }
        hasEnded = true;
        return 0;
    }
    void Kill() override {}

    std::atomic<bool> mayEnd{false};
    std::atomic<bool> hasEnded{false};
};

std::string lastReport;
ControllerType lastOrigin = NO_CONTROLLER;
LogLevel lastLevel = NO_LOG_LEVEL;

}  // namespace

TEST(ThreadBase, gives_the_result_of_Run_as_the_threads_value) {
    SmallThread thread;
    EXPECT_EQ(thread.GetThreadId(), pthread_t{0});
    ASSERT_TRUE(thread.CreateThread());
    void* value = nullptr;
    ASSERT_EQ(pthread_join(thread.GetThreadId(), &value), 0);
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(value), 42);
    EXPECT_EQ(thread.idSeenInside, thread.GetThreadId());
}

TEST(ThreadBase, carries_a_name_and_a_state) {
    SmallThread thread;
    thread.SetThreadName("Small");
    thread.SetState(TEST_STATE);
    EXPECT_EQ(thread.GetThreadName(), "Small");
    EXPECT_EQ(thread.GetState(), TEST_STATE);
}

TEST(ThreadBase, reports_a_thread_that_the_system_refuses) {
    SetReportFunction([](const StdString& text, LogLevel level, ControllerType origin) {
        lastReport = text.Text();
        lastLevel = level;
        lastOrigin = origin;
    });
    SmallThread thread;
    {
        const ImpossibleStack stack;
        EXPECT_FALSE(thread.CreateThread());
    }
    SetReportFunction(nullptr);
    EXPECT_EQ(lastReport,
              "ThreadBase::CreateThread  Unable to create Thread with error code = " + std::to_string(EAGAIN));
    EXPECT_EQ(lastLevel, 3);
    EXPECT_EQ(lastOrigin, 2);
    EXPECT_EQ(thread.GetThreadId(), pthread_t{0});
    thread.ReleaseThread();
}

TEST(ThreadBase, a_released_thread_is_detached) {
    static WaitingThread thread;  // until after its last instruction
    ASSERT_TRUE(thread.CreateThread());
    thread.ReleaseThread();
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_getattr_np(thread.GetThreadId(), &attributes), 0);
    int state = PTHREAD_CREATE_JOINABLE;
    EXPECT_EQ(pthread_attr_getdetachstate(&attributes, &state), 0);
    EXPECT_EQ(state, PTHREAD_CREATE_DETACHED);
    pthread_attr_destroy(&attributes);
    thread.mayEnd = true;
    while (!thread.hasEnded) {
        sched_yield();
    }
}
