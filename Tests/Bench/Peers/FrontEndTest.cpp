#include "Bench/Peers/FrontEnd.h"

#include <gmock/gmock.h>

#include "Tests/Bench/Peers/ConnectedPeer.h"

namespace Bench {
namespace {

using Values = std::vector<std::pair<std::string, std::string>>;

class FrontEndPeer : public ConnectedPeer<FrontEnd> {};

}  // namespace

TEST_F(FrontEndPeer, parses_a_measurement) {
    client->Write("ChlorineValue~0.53;DateValue~@Tuesday March 05,02:14:07 pm\n`");
    ASSERT_TRUE(peer->WaitForFrames(1, Deadline));
    EXPECT_EQ(peer->Frames()[0].text, "ChlorineValue~0.53;DateValue~@Tuesday March 05,02:14:07 pm\n");
    EXPECT_EQ(peer->Frames()[0].values,
              (Values{{"ChlorineValue", "0.53"}, {"DateValue", "@Tuesday March 05,02:14:07 pm\n"}}));
    EXPECT_EQ(peer->Screen().chlorine, "0.53");
    EXPECT_EQ(peer->Screen().date, "@Tuesday March 05,02:14:07 pm\n");
}

TEST_F(FrontEndPeer, screen_shows_the_last_value_of_each_name) {
    client->Write("InstrumentStatus~a;SoftwareVersion~1.2`CMD~-1`InstrumentStatus~b;SoftwareVersion~1.3`CMD~-2`");
    ASSERT_TRUE(peer->WaitForFrames(4, Deadline));
    EXPECT_EQ(peer->Screen().status, "b");
    EXPECT_EQ(peer->Screen().version, "1.3");
    EXPECT_EQ(peer->Screen().command, "-2");
}

TEST_F(FrontEndPeer, frame_in_pieces_is_joined) {
    for (const char byte : std::string("CMD~-1`CMD~")) {
        client->Write(std::string(1, byte));
    }
    ASSERT_TRUE(peer->WaitForFrames(1, Deadline));
    client->Write("-2`");
    ASSERT_TRUE(peer->WaitForFrames(2, Deadline));
    EXPECT_EQ(peer->Texts(), (std::vector<std::string>{"CMD~-1", "CMD~-2"}));
    EXPECT_EQ(peer->Rest(), "");
}

TEST_F(FrontEndPeer, sends_codes_in_the_form_of_the_protocol) {
    EXPECT_TRUE(peer->SendCode(FrontEnd::Running));
    EXPECT_TRUE(peer->SendCode(8, "text"));
    EXPECT_EQ(client->Read(8), "2~8~text");
}

TEST_F(FrontEndPeer, a_new_connection_replaces_the_old_and_clears_the_screen) {
    client->Write("CMD~-1`half");
    ASSERT_TRUE(peer->WaitForFrames(1, Deadline));
    const RawClient second(peer->Port());
    ASSERT_TRUE(peer->WaitForConnection(2, Deadline));
    EXPECT_EQ(peer->Screen().command, "");
    EXPECT_EQ(peer->Rest(), "");
    EXPECT_EQ(client->ReadResult(), 0);
    second.Write("CMD~-2`");
    ASSERT_TRUE(peer->WaitForFrames(2, Deadline));
}

TEST_F(FrontEndPeer, sees_the_analyzer_go) {
    client.reset();
    EXPECT_TRUE(peer->WaitForEnd(Deadline));
    EXPECT_FALSE(peer->IsConnected());
    EXPECT_FALSE(peer->SendCode(1));
    EXPECT_EQ(peer->CutReason(), "");
}

TEST_F(FrontEndPeer, disconnects_like_a_program_that_ends) {
    peer->Disconnect();
    EXPECT_EQ(client->ReadResult(), 0);
}

TEST_F(FrontEndPeer, aborts_like_a_machine_that_fails) {
    peer->Abort();
    EXPECT_EQ(client->ReadResult(), -1);
}

TEST_F(FrontEndPeer, frame_without_an_end_cuts_the_connection) {
    client->Write(std::string(FrontEnd::MaxFrame + 1, 'x'));
    EXPECT_TRUE(peer->WaitForEnd(Deadline));
    EXPECT_EQ(peer->CutReason(), "a frame of more than 65536 bytes");
    EXPECT_EQ(peer->Rest(), "");
}

TEST_F(FrontEndPeer, keeps_the_last_frames_of_many) {
    std::string frames;
    for (std::size_t i = 0; i < FrontEnd::FramesKept + 10; ++i) {
        frames += "CMD~" + std::to_string(i) + "`";
    }
    client->Write(frames);
    ASSERT_TRUE(peer->WaitForFrames(FrontEnd::FramesKept + 10, Deadline));
    EXPECT_EQ(peer->Frames().size(), FrontEnd::FramesKept);
    EXPECT_EQ(peer->Texts().front(), "CMD~10");
    std::size_t seen = 0;
    EXPECT_EQ(peer->WaitForValue("CMD", std::nullopt, seen, Deadline)->text, "CMD~10");
    EXPECT_EQ(seen, 11U);
}

TEST_F(FrontEndPeer, a_flood_that_is_not_read_is_refused_and_not_kept) {
    const std::string flood(1U << 20U, 'x');
    int accepted = 0;
    while (accepted < 1000 && peer->Send(flood)) {
        ++accepted;
    }
    EXPECT_LT(accepted, 1000);
}

TEST_F(FrontEndPeer, waits_for_a_value_after_those_seen) {
    client->Write("CMD~-1`CMD~-2`CMD~-1`");
    std::size_t seen = 0;
    EXPECT_TRUE(peer->WaitForValue("CMD", "-1", seen, Deadline).has_value());
    EXPECT_EQ(seen, 1U);
    EXPECT_TRUE(peer->WaitForValue("CMD", "-1", seen, Deadline).has_value());
    EXPECT_EQ(seen, 3U);
    EXPECT_FALSE(peer->WaitForValue("CMD", "-1", seen, 0.0).has_value());
}

TEST(FrontEndListen, busy_port_is_reported) {
    std::string error;
    const auto first = FrontEnd::Listen(0, error);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(FrontEnd::Listen(first->Port(), error), nullptr);
    EXPECT_EQ(error, "can't listen on port " + std::to_string(first->Port()) + ": another program listens there");
}

TEST(FrontEndDecoding, takes_whatever_comes) {
    EXPECT_EQ(DecodeFrontEndFrame("").values, Values{});
    EXPECT_EQ(DecodeFrontEndFrame("a").values, (Values{{"a", ""}}));
    EXPECT_EQ(DecodeFrontEndFrame("~").values, (Values{{"", ""}}));
    EXPECT_EQ(DecodeFrontEndFrame("a~b~c;;d~").values, (Values{{"a", "b~c"}, {"", ""}, {"d", ""}}));
    EXPECT_EQ(DecodeFrontEndFrame(std::string("a~\0b", 4)).values, (Values{{"a", std::string("\0b", 2)}}));
}

}  // namespace Bench
