#include "Bench/Peers/TestServer.h"

#include <gtest/gtest.h>

#include "Tests/Bench/Peers/ConnectedPeer.h"

namespace Bench {
namespace {

// An answer without data: a header with a length of 4, and the CRC of no data.
std::string EmptyAnswer() {
    std::string answer(TestHeaderSize + TestCrcSize, '\0');
    answer[14] = static_cast<char>(TestCrcSize);
    return answer;
}

class TestServerPeer : public ConnectedPeer<TestServer> {};

}  // namespace

TEST_F(TestServerPeer, sends_a_request_and_takes_the_answer) {
    TestRequest request;
    request.command = 800;
    ASSERT_TRUE(peer->SendRequest(request));
    EXPECT_EQ(client->Read(TestHeaderSize), EncodeTestRequest(request));
    client->Write(EmptyAnswer());
    const std::optional<TestAnswer> answer = peer->TakeAnswer(Deadline);
    ASSERT_TRUE(answer.has_value());
    EXPECT_TRUE(answer->crcFits);
    EXPECT_EQ(answer->data, "");
}

TEST_F(TestServerPeer, unanswered_request_times_out) {
    EXPECT_FALSE(peer->Ask({}, 0.05).has_value());
    EXPECT_EQ(peer->CutReason(), "");
}

TEST_F(TestServerPeer, late_answer_does_not_count_for_the_next_request) {
    client->Write(EmptyAnswer());
    EXPECT_TRUE(peer->TakeAnswer(Deadline).has_value());
    client->Write(EmptyAnswer());
    while (peer->AnswerCount() < 2) {
        std::this_thread::yield();
    }
    EXPECT_EQ(peer->Waiting(), 1U);
    EXPECT_FALSE(peer->Ask({}, 0.05).has_value());
    EXPECT_EQ(peer->Waiting(), 0U);
}

TEST_F(TestServerPeer, answers_without_a_request_have_a_limit) {
    std::string flood;
    for (std::size_t i = 0; i <= TestServer::AnswersKept; ++i) {
        flood += EmptyAnswer();
    }
    client->Write(flood);
    EXPECT_TRUE(peer->WaitForEnd(Deadline));
    EXPECT_EQ(peer->CutReason(), "more than 256 answers without a request");
    EXPECT_EQ(peer->Waiting(), 0U);
}

TEST_F(TestServerPeer, invalid_answer_cuts_the_connection) {
    std::string bad = EmptyAnswer();
    bad[14] = 3;
    client->Write(bad);
    EXPECT_TRUE(peer->WaitForEnd(Deadline));
    EXPECT_EQ(peer->CutReason(), "an answer with a length of 3, too short for its CRC");
}

TEST_F(TestServerPeer, half_an_answer_is_forgotten_with_its_connection) {
    client->Write(EmptyAnswer().substr(0, 20));
    const RawClient second(peer->Port());
    ASSERT_TRUE(peer->WaitForConnection(2, Deadline));
    second.Write(EmptyAnswer());
    EXPECT_TRUE(peer->TakeAnswer(Deadline).has_value());
}

TEST_F(TestServerPeer, asking_without_a_connection_fails_at_once) {
    client.reset();
    ASSERT_TRUE(peer->WaitForEnd(Deadline));
    EXPECT_FALSE(peer->Ask({}, Deadline).has_value());
}

}  // namespace Bench
