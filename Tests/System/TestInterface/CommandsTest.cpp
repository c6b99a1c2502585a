// Every command of the test link, by its number, over TCP.
#include <gmock/gmock.h>

#include <bit>

#include "System/Messages/MeasurementMessage.h"
#include "Tests/System/TestInterface/LinkFixture.h"

namespace {

using testing::ElementsAre;

constexpr char Invalid[] = "TestInterface::ProcessTestCommand Invalid Test Command Value";
constexpr char Sent[] = "CommandResponse::SendResponse  Sent information to Server";

class LinkCommands : public LinkOnBoard {
protected:
    // A result of the measurement, at that second.
    static void Measured(double chlorine, std::int32_t seconds) {
        MeasurementResults results;
        results.SetChlorine(chlorine);
        TimeInfo time;
        time = timespec{seconds, 5};
        results.SetTime(time);
        auto message = std::make_unique<MeasurementMessage>();
        message->SetMeasurementResults(results);
        EXPECT_TRUE(MessageController::SendMessage(std::move(message), MEASUREMENT_ENGINE));
    }

    // In the form of the payload: the result's time and its value.
    static Bytes Records(const std::vector<std::pair<double, std::int32_t>>& results) {
        Bytes bytes;
        for (const auto& [chlorine, seconds] : results) {
            Bytes record(16, 0);
            PutNumber(record, 0, 4, static_cast<std::uint32_t>(seconds));
            PutNumber(record, 4, 4, 5);
            PutNumber(record, 8, 8, std::bit_cast<std::uint64_t>(chlorine));
            bytes.insert(bytes.end(), record.begin(), record.end());
        }
        return bytes;
    }
};

}  // namespace

TEST_F(LinkCommands, x840_gives_the_state_in_a_frame_that_repeats_nothing) {
    const RawConnection peer = Connect();
    const std::int64_t before = Board().WallNanoSeconds();
    const Reply reply = Ask(peer, Frame(840).Flags(0xFFFE).Value(2, 5000));
    const std::int64_t after = Board().WallNanoSeconds();
    // All fields but length and time are 0: the fixture has checked that.
    EXPECT_EQ(NumberAt(reply.header, 14, 3), 8U + 11U + 4U);
    EXPECT_EQ(BehindStamp(reply), std::string("TEST_STATE\0", 11));
    const std::int64_t stamp = StampAt(reply.data, 0);
    const std::int64_t sent = StampAt(reply.header, 24);
    EXPECT_LE(before, stamp);
    EXPECT_LE(stamp, sent);
    EXPECT_LE(sent, after);
    WaitFor(Sent);
}

TEST_F(LinkCommands, are_answered_in_order) {
    const RawConnection peer = Connect();
    Bytes both = Frame(30100);
    const Bytes second = Frame(30200);
    both.insert(both.end(), second.begin(), second.end());
    peer.Send(both);
    EXPECT_EQ(BehindStamp(ReceiveReply(peer)), Text("Chlorine Analyzer"));
    EXPECT_EQ(BehindStamp(ReceiveReply(peer)), Text("CL-000001"));
}

TEST_F(LinkCommands, x800_answers_with_no_data_and_their_checksum_of_zero) {
    const RawConnection peer = Connect();
    const Reply reply = Ask(peer, Frame(800));
    EXPECT_EQ(NumberAt(reply.header, 14, 3), 4U);
    EXPECT_EQ(reply.data, Bytes());
}

TEST_F(LinkCommands, x810_runs_for_good_whatever_its_value_asks_for) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(810).Value(5))), Text("RUNNING_STATE"));
    EXPECT_TRUE(peer.IsEnded());
    EXPECT_TRUE(WaitForState(MEASUREMENT_ENGINE, RUNNING_STATE));
    const double start = Board().Seconds();
    EXPECT_TRUE(Board().WaitUntil([&] { return Board().Seconds() > start + 20.0; }));
    EXPECT_EQ(SettledCountOf("Sending Command - MOVE_TO_TEST"), 0);
}

TEST_F(LinkCommands, x820_moves_to_idle_and_closes_the_link) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(820))), Text("IDLE_STATE"));
    EXPECT_TRUE(peer.IsEnded());
    EXPECT_TRUE(WaitForState(SYSTEM_CONTROL, IDLE_STATE));
    EXPECT_TRUE(WaitForState(TEST_INTERFACE, IDLE_STATE));
}

TEST_F(LinkCommands, x820_with_a_period_comes_back_to_the_test_state_on_the_same_link) {
    const RawConnection peer = Connect();
    ForgetLog();
    const double start = Board().Seconds();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(820).Value(20, 5000))), Text("IDLE_STATE"));
    WaitFor("Changing to IDLE_STATE State for - TestInterface");
    WaitFor("Changing to TEST_STATE State for - TestInterface");
    EXPECT_GE(Board().Seconds() - start, 20.5);
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(840))), Text("TEST_STATE"));
}

TEST_F(LinkCommands, x830_runs_and_closes_the_link) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(830))), Text("RUNNING_STATE"));
    EXPECT_TRUE(peer.IsEnded());
    EXPECT_TRUE(WaitForState(MEASUREMENT_ENGINE, RUNNING_STATE));
}

TEST_F(LinkCommands, x830_with_5_s_comes_back_to_the_test_state_after_5_s) {
    const RawConnection peer = Connect();
    const double start = Board().Seconds();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(830).Value(5))), Text("RUNNING_STATE"));
    WaitFor("Changing to RUNNING_STATE State for - TestInterface");
    WaitFor("Changing to TEST_STATE State for - TestInterface", 2);
    EXPECT_GE(Board().Seconds() - start, 5.0);
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(840))), Text("TEST_STATE"));
}

// The count stays above 0, so that every end of the period starts the next.
TEST_F(LinkCommands, x830_with_a_count_comes_back_to_the_test_state_again_and_again) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(830).Count(2).Value(20))), Text("RUNNING_STATE"));
    WaitFor("Sending Command - MOVE_TO_TEST", 3);
    EXPECT_EQ(Ask(peer, Frame(800)).data, Bytes());
    const long moves = SettledCountOf("Sending Command - MOVE_TO_TEST");
    const double start = Board().Seconds();
    EXPECT_TRUE(Board().WaitUntil([&] { return Board().Seconds() > start + 40.0; }));
    EXPECT_EQ(SettledCountOf("Sending Command - MOVE_TO_TEST"), moves);
}

TEST_F(LinkCommands, x850_shuts_down_and_closes_the_link_whatever_its_value_asks_for) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(850).Value(5))), Text("SHUTDOWN_STATE"));
    EXPECT_TRUE(peer.IsEnded());
    EXPECT_TRUE(WaitForState(SYSTEM_CONTROL, SHUTDOWN_STATE));
}

// The link is closed before the answer, which therefore cannot be sent.
TEST_F(LinkCommands, x860_resets_the_system_without_an_answer) {
    const RawConnection peer = Connect();
    peer.Send(Frame(860));
    EXPECT_TRUE(peer.IsEnded());
    WaitFor("Resetting the System from - SystemControl");
    for (const char* line :
         {"TCPSocket::SendCommand  Error in sending header information",
          "TCPSocket::SendPayload  Error in sending payload information",
          "CommandResponse::SendResponse  Unable to send information to Server", "Sending Command - RESET_SYSTEM"}) {
        EXPECT_EQ(CountOf(line), 1) << line;
    }
    JoinAndDestroy();
}

TEST_F(LinkCommands, of_state_control_with_any_other_number_do_nothing) {
    const RawConnection peer = Connect();
    for (const int command : {0, 1, 799, 801, 811, 859, 861, 999}) {
        SendUnanswered(peer, Frame(command));
    }
    EXPECT_EQ(SettledCountOf(Invalid), 0);
}

TEST_F(LinkCommands, of_a_reserved_range_do_nothing) {
    const RawConnection peer = Connect();
    for (const int command : {11000, 11063, 20100, 20499, 21100, 22899, 42100, 42199, 46100, 46499,
                              50200, 56499, 30400, 30500, 30600, 30699, 62000, 62099, 62101, 62999}) {
        SendUnanswered(peer, Frame(command));
    }
    EXPECT_EQ(SettledCountOf(Invalid), 0);
}

TEST_F(LinkCommands, outside_every_range_are_invalid) {
    const RawConnection peer = Connect();
    long count = 0;
    // The range from 40100 ends before it begins.
    for (const int command : {1000,  4199,  9999,  10256, 10999, 11064, 11999, 12256, 12999, 13256, 13299,
                              13364, 20099, 20500, 21099, 22900, 30099, 30700, 40099, 40100, 40150, 41999,
                              42099, 42200, 44099, 44600, 46099, 46500, 50199, 56500, 61999, 63000, 65535}) {
        SendUnanswered(peer, Frame(command));
        ++count;
    }
    EXPECT_EQ(SettledCountOf(Invalid), count);
}

// The request returns to the test interface alone, which does not take a request as an answer.
TEST_F(LinkCommands, for_the_hardware_are_published_and_not_answered) {
    const RawConnection peer = Connect();
    const struct {
        std::uint16_t command;
        const char* name;
    } cases[] = {{10000, "ADC_STATUS_MESSAGE"},
                 {10255, "ADC_STATUS_MESSAGE"},
                 {12000, "TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE"},
                 {12255, "TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE"},
                 {13000, "TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE"},
                 {13255, "TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE"},
                 {13300, "TEST_PWM_DATA_MESSAGE"},
                 {13363, "TEST_PWM_DATA_MESSAGE"}};
    for (const auto& one : cases) {
        Board().ClearLog();
        SendUnanswered(peer, Frame(one.command));
        const std::string line = std::string("Data Message (") + one.name + ") : From - ";
        WaitFor(line + "TestInterface : To - MessagingControl");
    }
    EXPECT_EQ(SettledCountOf(Invalid), 0);
}

TEST_F(LinkCommands, x30100_gives_the_device) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30100))), Text("Chlorine Analyzer"));
}

TEST_F(LinkCommands, have_defaults_for_device_and_serial_number) {
    configuration.Remove("DeviceID").Remove("SerialNumber");
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30100))), Text("InvalidDevice"));
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30200))), Text("InvalidSerialNumber"));
}

TEST_F(LinkCommands, x30200_without_bit_0_only_reads) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30200).Count(5))), Text("CL-000001"));
}

TEST_F(LinkCommands, x30200_with_a_payload_replaces_the_serial_number_until_a_reset) {
    RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30200).Write("CL-9"))), Text("CL-9"));
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30200))), Text("CL-9"));
    Reset();
    const RawConnection fresh = Connect();
    EXPECT_EQ(BehindStamp(Ask(fresh, Frame(30200))), Text("CL-000001"));
}

TEST_F(LinkCommands, x30200_to_write_without_a_payload_keeps_the_serial_number) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30200).Flags(1))), Text("CL-000001"));
}

TEST_F(LinkCommands, do_not_look_at_the_checksum_of_a_payload) {
    const RawConnection peer = Connect();
    Bytes wrong = Frame(30200).Write("CL-9");
    wrong.back() ^= 0xFF;
    EXPECT_EQ(BehindStamp(Ask(peer, wrong)), Text("CL-9"));
}

TEST_F(LinkCommands, x30200_takes_zero_bytes_of_a_payload_as_they_are) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30200).Write(std::string("a\0b", 3)))), Text(std::string("a\0b", 3)));
}

TEST_F(LinkCommands, x30300_gives_the_hardware_address) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30300))), Text("02:1A:6C:00:3E:F5"));
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30300).Flags(4))), std::string("\x02\x1A\x6C\x00\x3E\xF5", 6));
}

TEST_F(LinkCommands, x30300_gives_the_hardware_address_of_the_interface_in_the_settings) {
    configuration.Set("EthernetInterfaceName", "lo");
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30300))), Text("00:00:00:00:00:00"));
}

TEST_F(LinkCommands, x30300_gives_nothing_for_an_unknown_interface) {
    configuration.Set("EthernetInterfaceName", "none");
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30300))), "");
}

TEST_F(LinkCommands, from_44100_to_44599_answer_with_three_readings_of_a_known_value) {
    const RawConnection peer = Connect();
    for (const int command : {44100, 44599}) {
        const std::int64_t before = Board().WallNanoSeconds();
        const Reply reply = Ask(peer, Frame(command));
        const std::int64_t after = Board().WallNanoSeconds();
        ASSERT_EQ(reply.data.size(), 8U + 36U);
        EXPECT_EQ(NumberAt(reply.data, 16), 0x12345678U);
        EXPECT_EQ(NumberAt(reply.data, 28), 0x33445566U);
        EXPECT_EQ(NumberAt(reply.data, 40), 0x11997788U);
        EXPECT_LE(before, StampAt(reply.data, 8));
        EXPECT_LE(StampAt(reply.data, 8), StampAt(reply.data, 20));
        EXPECT_LE(StampAt(reply.data, 20), StampAt(reply.data, 32));
        EXPECT_LE(StampAt(reply.data, 32), StampAt(reply.data, 0));  // the readings are taken before the answer
        EXPECT_LE(StampAt(reply.data, 0), after);
    }
}

TEST_F(LinkCommands, x62100_answers_once_measured) {
    const RawConnection peer = Connect();
    peer.Send(Frame(62100));
    WaitFor("Sending Command - COLLECT_MEASUREMENT");
    Measured(1.25, 1356955300);
    EXPECT_EQ(ReceiveReply(peer).data, Records({{1.25, 1356955300}}));
}

// A cycle begins in the running state only, and the link asks in the test state.
TEST_F(LinkCommands, x62100_is_not_answered_while_nothing_measures) {
    const RawConnection peer = Connect();
    SendUnanswered(peer, Frame(62100));
    const double start = Board().Seconds();
    EXPECT_TRUE(Board().WaitUntil([&] { return Board().Seconds() > start + 200.0; }));
    SendUnanswered(peer, Frame(999));
    EXPECT_EQ(SettledCountOf("Sending Command - COLLECT_MEASUREMENT"), 1);
}

// An 800 that comes at the end of a period does not stop the sequence, because that end starts the next period; a reset
// does.
TEST_F(LinkCommands, x62100_three_times_without_a_period_asks_without_pause_until_a_reset) {
    const RawConnection peer = Connect();
    peer.Send(Frame(62100).Count(3));
    WaitFor("Sending Command - COLLECT_MEASUREMENT", 50);
    Send(RESET_SYSTEM);
    EXPECT_TRUE(peer.IsEnded());
    JoinAndDestroy();
}

TEST_F(LinkCommands, x62100_three_times_gathers_three_measurements_in_one_answer) {
    const RawConnection peer = Connect();
    const double start = Board().Seconds();
    peer.Send(Frame(62100).Count(3).Value(60));
    WaitFor("Sending Command - COLLECT_MEASUREMENT");
    Measured(1.25, 1);
    WaitFor("Sending Command - COLLECT_MEASUREMENT", 2);
    EXPECT_GE(Board().Seconds() - start, 60.0);
    Measured(-2.5, 2);
    WaitFor("Sending Command - COLLECT_MEASUREMENT", 3);
    EXPECT_GE(Board().Seconds() - start, 120.0);
    Measured(0.0, 3);
    EXPECT_EQ(ReceiveReply(peer).data, Records({{1.25, 1}, {-2.5, 2}, {0.0, 3}}));
    // The end of the last period asks for one more, whose result is dropped.
    WaitFor("Sending Command - COLLECT_MEASUREMENT", 4);
    Measured(9.0, 4);
    SendUnanswered(peer, Frame(999));
    EXPECT_EQ(SettledCountOf("Sending Command - COLLECT_MEASUREMENT"), 4);
}

TEST_F(LinkCommands, take_no_unrequested_measurement) {
    const RawConnection peer = Connect();
    Measured(1.0, 1);
    SendUnanswered(peer, Frame(999));
    peer.Send(Frame(62100));
    WaitFor("Sending Command - COLLECT_MEASUREMENT");
    Measured(2.0, 2);
    EXPECT_EQ(ReceiveReply(peer).data, Records({{2.0, 2}}));
    Measured(3.0, 3);
    SendUnanswered(peer, Frame(999));
}

// An identification leaves one answer to go, which a measurement would fill.
TEST_F(LinkCommands, take_no_measurement_outside_a_request_for_one) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30100))), Text("Chlorine Analyzer"));
    Measured(1.0, 1);
    SendUnanswered(peer, Frame(999));
}

// A period that ends in another state asks for a measurement too; its result is not taken there.
TEST_F(LinkCommands, take_no_measurement_outside_the_test_state) {
    const RawConnection peer = Connect();
    peer.Send(Frame(62100).Count(2).Value(20));
    WaitFor("Sending Command - COLLECT_MEASUREMENT");
    Measured(1.0, 1);
    Send(MOVE_TO_IDLE);
    EXPECT_TRUE(WaitForState(TEST_INTERFACE, IDLE_STATE));
    WaitFor("Sending Command - COLLECT_MEASUREMENT", 2);
    Measured(2.0, 2);
    Send(MOVE_TO_TEST);
    EXPECT_TRUE(WaitForState(TEST_INTERFACE, TEST_STATE));
    SendUnanswered(peer, Frame(999));
}

TEST_F(LinkCommands, x800_ends_a_sequence_of_measurements) {
    const RawConnection peer = Connect();
    peer.Send(Frame(62100).Count(3).Value(20));
    WaitFor("Sending Command - COLLECT_MEASUREMENT");
    Measured(1.0, 1);
    EXPECT_EQ(Ask(peer, Frame(800)).data, Bytes());  // the results so far are dropped
    const double start = Board().Seconds();
    EXPECT_TRUE(Board().WaitUntil([&] { return Board().Seconds() > start + 40.0; }));
    EXPECT_EQ(SettledCountOf("Sending Command - COLLECT_MEASUREMENT"), 1);
}
