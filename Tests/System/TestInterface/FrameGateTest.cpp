#include "System/TestInterface/FrameGate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

class FrameGates : public testing::Test {
protected:
    std::shared_ptr<FrameGate> gate = std::make_shared<FrameGate>();
};

}  // namespace

TEST_F(FrameGates, admit_the_next_frame_once_the_one_before_is_freed) {
    std::shared_ptr<void> first = FrameGate::Pass(gate);
    ASSERT_NE(first, nullptr);
    std::atomic<bool> isFreed{false};
    std::thread next([&] {
        EXPECT_NE(FrameGate::Pass(gate), nullptr);
        EXPECT_TRUE(isFreed);
    });
    isFreed = true;
    first.reset();
    next.join();
}

TEST_F(FrameGates, that_are_closed_admit_no_frame) {
    gate->Close();
    EXPECT_TRUE(gate->IsClosed());
    EXPECT_EQ(FrameGate::Pass(gate), nullptr);
}

TEST_F(FrameGates, wake_a_waiting_thread_when_they_close) {
    const std::shared_ptr<void> first = FrameGate::Pass(gate);
    std::thread next([&] { EXPECT_EQ(FrameGate::Pass(gate), nullptr); });
    gate->Close();
    next.join();
}

TEST_F(FrameGates, cut_a_sleep_short_when_they_close) {
    std::thread sleeper([&] { EXPECT_FALSE(gate->Sleep(std::chrono::hours(24))); });
    gate->Close();
    sleeper.join();
}

TEST_F(FrameGates, outlive_their_owner_while_a_receipt_is_out) {
    const std::shared_ptr<void> receipt = FrameGate::Pass(gate);
    gate.reset();
    EXPECT_NE(receipt, nullptr);
}
