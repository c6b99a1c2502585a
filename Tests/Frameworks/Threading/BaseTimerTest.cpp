#include "Frameworks/Threading/BaseTimer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "Frameworks/Utilities/Report.h"
#include "Tests/Support/ExactTime.h"
#include "Tests/Support/ImpossibleStack.h"

namespace {

constexpr std::chrono::seconds HangDeadline{60};
constexpr std::uint32_t OneHour = 3600000;

thread_local int expiriesOfThisThread = 0;

// The events of a timer's runs; they outlive the timer.
class Notes {
public:
    void Add(const std::string& note) {
        const std::lock_guard lock(m_mutex);
        m_notes.push_back(note);
        m_changed.notify_all();
    }

    void WaitFor(const std::string& note, std::ptrdiff_t count = 1) {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_changed.wait_for(lock, HangDeadline, [&] { return Counted(note) >= count; })) << note;
    }

    std::ptrdiff_t Count(const std::string& note) {
        const std::lock_guard lock(m_mutex);
        return Counted(note);
    }

private:
    std::ptrdiff_t Counted(const std::string& note) const { return std::count(m_notes.begin(), m_notes.end(), note); }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_notes;
};

class NotingTimer final : public BaseTimer {
public:
    explicit NotingTimer(Notes& notes) : m_notes(notes) {}
    NotingTimer(const NotingTimer&) = delete;
    NotingTimer& operator=(const NotingTimer&) = delete;
    ~NotingTimer() override { EndRuns(); }

    bool Init() override {
        const bool result = BaseTimer::Init();
        m_notes.Add("init");
        return result && initResult;
    }

    std::int32_t Exit() override {
        m_notes.Add("exit");
        return BaseTimer::Exit();
    }

    bool initResult = true;  // set before Start

private:
    bool TimerExpired() override {
        ++expiriesOfThisThread;
        m_notes.Add("expired " + std::to_string(expiriesOfThisThread));
        return true;
    }

    Notes& m_notes;
};

class TimerInExactTime : public ExactBoardTest {
protected:
    Notes notes;
    NotingTimer timer{notes};
};

}  // namespace

TEST(BaseTimer, starts_no_thread_when_it_is_made) {
    Notes notes;
    const NotingTimer timer(notes);
    EXPECT_EQ(timer.GetThreadId(), pthread_t{0});
    EXPECT_EQ(notes.Count("init"), 0);
}

TEST(BaseTimer, keeps_the_duration_as_a_number_and_as_seconds_and_nanoseconds) {
    Notes notes;
    NotingTimer timer(notes);
    EXPECT_EQ(timer.GetDuration(), 0U);
    timer.SetDuration(86400999);
    timer.SetDuration(2500);
    EXPECT_EQ(timer.GetDuration(), 2500U);
    EXPECT_EQ(timer.GetDurationValue().GetSeconds(), 2);
    EXPECT_EQ(timer.GetDurationValue().GetNanoSeconds(), 500000000);
}

TEST(BaseTimer, expires_at_once_with_a_duration_of_0) {
    Notes notes;
    NotingTimer timer(notes);
    timer.SetDuration(0);
    ASSERT_TRUE(timer.Start());
    notes.WaitFor("exit");
    EXPECT_EQ(notes.Count("expired 1"), 1);
}

TEST_F(TimerInExactTime, expires_after_its_duration) {
    timer.SetDuration(2500);
    ASSERT_TRUE(timer.Start());
    notes.WaitFor("expired 1");
    EXPECT_THAT(Board().Seconds(), IsWaitOf(2.5));
}

TEST_F(TimerInExactTime, ends_a_killed_run_after_its_full_duration_without_expiring) {
    timer.SetDuration(2500);
    ASSERT_TRUE(timer.Start());
    timer.Kill();
    notes.WaitFor("exit");
    EXPECT_THAT(Board().Seconds(), IsWaitOf(2.5));
    EXPECT_EQ(notes.Count("expired 1"), 0);
}

TEST(BaseTimer, runs_again_on_a_new_thread_after_expiry) {
    Notes notes;
    NotingTimer timer(notes);
    ASSERT_TRUE(timer.Start());
    notes.WaitFor("exit");
    ASSERT_TRUE(timer.Start());
    notes.WaitFor("exit", 2);
    EXPECT_EQ(notes.Count("expired 1"), 2);
    EXPECT_EQ(notes.Count("expired 2"), 0);
}

TEST_F(TimerInExactTime, started_again_expires_for_the_earlier_run_too) {
    timer.SetDuration(100);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(timer.Start());
    notes.WaitFor("exit", 2);
    EXPECT_EQ(notes.Count("expired 1"), 2);
}

TEST_F(TimerInExactTime, started_again_revokes_a_Kill_of_the_earlier_run) {
    timer.SetDuration(1000);
    ASSERT_TRUE(timer.Start());
    timer.Kill();
    ASSERT_TRUE(timer.Start());
    notes.WaitFor("exit", 2);
    EXPECT_EQ(notes.Count("expired 1"), 2);
}

TEST(BaseTimer, does_not_expire_if_Init_fails) {
    Notes notes;
    NotingTimer timer(notes);
    timer.initResult = false;
    ASSERT_TRUE(timer.Start());
    notes.WaitFor("exit");
    EXPECT_EQ(notes.Count("expired 1"), 0);
}

TEST(BaseTimer, reports_a_refused_thread_and_can_start_later) {
    static std::string report;
    SetReportFunction([](const StdString& text, LogLevel, ControllerType) { report = text.Text(); });
    Notes notes;
    NotingTimer timer(notes);
    {
        const ImpossibleStack stack;
        EXPECT_FALSE(timer.Start());
    }
    SetReportFunction(nullptr);
    EXPECT_EQ(report.rfind("ThreadBase::CreateThread  Unable to create Thread with error code = ", 0), 0U) << report;
    EXPECT_TRUE(timer.Start());
    notes.WaitFor("expired 1");
}

TEST(BaseTimer, ends_a_sleeping_run_without_expiring_when_it_is_destroyed) {
    Notes notes;
    {
        NotingTimer timer(notes);
        timer.SetDuration(OneHour);
        ASSERT_TRUE(timer.Start());
        notes.WaitFor("init");
    }
    EXPECT_EQ(notes.Count("exit"), 1);
    EXPECT_EQ(notes.Count("expired 1"), 0);
}

TEST(BaseTimer, ends_every_run_when_it_is_destroyed_right_after_its_starts) {
    Notes notes;
    constexpr int Runs = 8;
    {
        NotingTimer timer(notes);
        timer.SetDuration(OneHour);
        for (int run = 0; run < Runs; ++run) {
            ASSERT_TRUE(timer.Start());
        }
    }
    EXPECT_EQ(notes.Count("exit"), Runs);
    EXPECT_EQ(notes.Count("expired 1"), 0);
}

TEST(BaseTimer, aborts_if_its_subclass_does_not_end_the_runs) {
    class ForgetfulTimer final : public BaseTimer {
        bool TimerExpired() override { return true; }
    };
    EXPECT_DEATH(ForgetfulTimer(), "BaseTimer: a subclass did not call EndRuns in its destructor");
}

TEST(BaseTimer, can_be_set_while_an_earlier_run_reads_it) {
    Notes notes;
    NotingTimer timer(notes);
    for (std::uint32_t round = 1; round <= 20; ++round) {
        timer.SetDuration(round % 3);
        ASSERT_TRUE(timer.Start());
        timer.SetDuration(OneHour - round);
        EXPECT_EQ(timer.GetDuration(), OneHour - round);
    }
}
