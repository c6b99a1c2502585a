// The whole system with both its peers.
#include <filesystem>

#include "Bench/Peers/TestServer.h"
#include "Tests/Integration/FrontEndFixture.h"

namespace {

constexpr int TestServerPort = 1200;

std::size_t EntriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

Bench::TestRequest Request(std::uint16_t command, double value = 0.0) {
    Bench::TestRequest request;
    request.command = command;
    request.value = value;
    return request;
}

class WithBothPeers : public WithFrontEnd {
protected:
    explicit WithBothPeers(double speed = 50.0) : WithFrontEnd(speed) {
        std::string error;
        station = Bench::TestServer::Listen(0, error);
        EXPECT_NE(station, nullptr) << error;
        EXPECT_TRUE(Board().MapPort(TestServerPort, station->Port()));
    }

    ~WithBothPeers() override {
        if (system != nullptr) {
            Reset();
        }
    }

    std::string StateText() {
        const auto answer = station->Ask(Request(840), timeout);
        const auto text = answer ? Bench::DecodeTestText(answer->data) : std::nullopt;
        return text ? text->text : "none";
    }

    std::unique_ptr<Bench::TestServer> station;
};

class ManyGenerations : public WithBothPeers {
protected:
    ManyGenerations() : WithBothPeers(200.0) { configuration.Set("LoggingLevel", "NOTICE_LOG_LEVEL"); }

    // Both links up and in use.
    void BringUp(std::size_t generation) {
        Start();
        ASSERT_TRUE(frontEnd->WaitForConnection(generation, timeout)) << "generation " << generation;
        ASSERT_TRUE(Board().WaitUntil([] { return IsIdle(USER_INTERFACE_DATA_CONTROL) && IsIdle(TEST_INTERFACE); }));
        Send(MOVE_TO_TEST);
        ASSERT_TRUE(station->WaitForConnection(generation, timeout)) << "generation " << generation;
        ASSERT_EQ(StateText(), "TEST_STATE");
    }

    void BringDown() {
        JoinAndDestroy();
        EXPECT_TRUE(frontEnd->WaitForEnd(timeout));
        EXPECT_TRUE(station->WaitForEnd(timeout));
    }
};

}  // namespace

TEST_F(ManyGenerations, many_resets_leak_nothing_and_both_links_connect_again) {
    BringUp(1);
    Reset();
    EXPECT_TRUE(frontEnd->WaitForEnd(timeout));
    EXPECT_TRUE(station->WaitForEnd(timeout));
    const std::size_t threads = EntriesOf("/proc/self/task");
    const std::size_t descriptors = EntriesOf("/proc/self/fd");
    for (std::size_t generation = 2; generation <= RESETS + 1; ++generation) {
        ASSERT_NO_FATAL_FAILURE(BringUp(generation));
        // From each side in turn.
        ASSERT_TRUE(generation % 2 == 0 ? frontEnd->SendCode(Bench::FrontEnd::Reset)
                                        : station->SendRequest(Request(860)));
        BringDown();
    }
    // A joined thread may be listed a moment longer, in the first count too.
    EXPECT_TRUE(Board().WaitUntil([&] { return EntriesOf("/proc/self/task") <= threads; }));
    EXPECT_EQ(EntriesOf("/proc/self/fd"), descriptors);
}

// A cycle that runs when the test state is entered continues to its end.
TEST_F(WithBothPeers, test_station_gets_the_measurement_on_the_card) {
    StartConnected();
    Send(MOVE_TO_TEST);
    ASSERT_TRUE(station->WaitForConnection(timeout));
    ASSERT_EQ(StateText(), "TEST_STATE");
    const auto moved = station->Ask(Request(830, 30.0), timeout);
    ASSERT_TRUE(moved.has_value());
    EXPECT_EQ(Bench::DecodeTestText(moved->data)->text, "RUNNING_STATE");
    WaitFor("Changing to TEST_STATE State for - TestInterface", 2);
    const auto measured = station->Ask(Request(62100), 10.0 * timeout);
    ASSERT_TRUE(measured.has_value());
    EXPECT_TRUE(measured->crcFits);
    const auto measurements = Bench::DecodeTestMeasurements(measured->data);
    ASSERT_TRUE(measurements.has_value());
    ASSERT_EQ(measurements->size(), 1U);
    EXPECT_TRUE(Board().WaitUntil([this] { return HasRecord(); }));
    EXPECT_NEAR((*measurements)[0].chlorine, ChlorineOnCard(), 1e-6);
    EXPECT_GT((*measurements)[0].chlorine, 0.1);
}
