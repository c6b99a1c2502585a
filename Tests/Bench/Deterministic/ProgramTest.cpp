// The shipped program in exact time, with the libraries preloaded.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "Bench/Common/BenchedAnalyzer.h"
#include "Tests/Support/BenchRun.h"

using testing::HasSubstr;

namespace Bench {

namespace {

constexpr double FirstResult = 236.0;  // seconds of the run
constexpr double Cycle = 146.0;

std::size_t CountOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

class ProgramInExactTime : public testing::Test {
protected:
    void MakeBoard(std::uint64_t seed = 3) {
        std::string error;
        Places places = PlacesOfBuild("");
        places.bench = m_folder / ("bench" + std::to_string(m_boards++));
        BoardSetup setup;
        setup.startSeconds = 1767225600;
        setup.exact.emplace().seed = seed;
        ASSERT_TRUE(analyzer.ReadSettings(places, error)) << error;
        ASSERT_TRUE(analyzer.Settings().file.Set("AlertLevel", "0.5"));
        ASSERT_TRUE(analyzer.MakeBoard(setup, error)) << error;
        SetChlorine(0.3);
    }

    void Start() {
        std::string error;
        ASSERT_TRUE(analyzer.Start(error)) << error;
    }

    void MakeBoardAndStart() {
        MakeBoard();
        Start();
    }

    // Until the program pauses there or has ended. The real time is a guard against hanging.
    bool RunUntil(double seconds) {
        for (int tries = 0; tries < 120 && !analyzer.HasEnded(m_end); ++tries) {
            if (OnBoard().RunUntil(seconds) && !OnBoard().Exact().over) {
                return true;
            }
        }
        return false;
    }

    void SetChlorine(double chlorine) const {
        InstrumentSettings settings = OnBoard().Settings();
        settings.chlorine = chlorine;
        OnBoard().SetSettings(settings);
    }

    void SetFault(const std::string& fault) const {
        std::string error;
        EXPECT_TRUE(OnBoard().SetFault(fault, error)) << error;
    }

    Bench::Board& OnBoard() const { return analyzer.OnBoard(); }
    const std::string& EndReason() const { return m_end; }
    std::string Log() const { return ReadFile(analyzer.Log()); }
    std::string Measurements() const { return ReadFile(analyzer.Card() + "/2026-01-01_Measurement.csv"); }
    std::size_t Results() const {
        const std::string text = Measurements();
        const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
        return lines == 0 ? 0 : lines - 1;  // the first has the names of the columns
    }

    BenchedAnalyzer analyzer;

private:
    TemporaryFolder m_folder;
    std::string m_end;
    int m_boards = 0;
};

class RunInExactTimeByConsole : public testing::Test {
protected:
    // What ./run shows.
    std::string OutputOf(const std::string& seed) {
        BenchRun run;
        EXPECT_EQ(run.Run({"--exact", "--log", "--cycles", "2", "--seed", seed, "--bench", m_folder / "bench"}), 0)
            << run.Err();
        const std::string state = ReadFile(m_folder / "bench/card/2026-01-01_Status.csv");
        EXPECT_THAT(state, HasSubstr("Optical"));
        return run.Out() + state;
    }

private:
    TemporaryFolder m_folder;
};

}  // namespace

TEST_F(RunInExactTimeByConsole, shows_and_records_the_same_for_the_same_seed) {
    const std::string output = OutputOf("7");
    EXPECT_EQ(CountOf(output, "\nresult "), 2U);
    EXPECT_EQ(OutputOf("7"), output);
}

TEST_F(ProgramInExactTime, takes_its_threads_in_another_order_for_another_seed) {
    std::uint64_t hashes[3] = {};
    for (std::uint64_t& hash : hashes) {
        MakeBoard(&hash == hashes ? 1 : 2);
        Start();
        ASSERT_TRUE(RunUntil(100.0)) << EndReason();
        hash = OnBoard().Exact().hash;
        analyzer.Stop();
    }
    EXPECT_NE(hashes[0], hashes[1]);
    EXPECT_EQ(hashes[1], hashes[2]);
}

TEST_F(ProgramInExactTime, pauses_at_the_asked_moments) {
    MakeBoardAndStart();
    for (const double seconds : {0.5, 0.75, 10.0, 100.25}) {
        ASSERT_TRUE(RunUntil(seconds)) << EndReason();
        EXPECT_NEAR(OnBoard().Seconds(), seconds, 1e-4);  // it pauses between two calls
    }
    const std::string log = Log();
    EXPECT_NE(log, "");
    OnBoard().WaitUntil([] { return false; }, 0.2);
    EXPECT_NEAR(OnBoard().Seconds(), 100.25, 1e-4);
    EXPECT_EQ(Log(), log);
}

TEST_F(ProgramInExactTime, sees_a_fault_that_is_set_in_a_pause) {
    MakeBoardAndStart();
    ASSERT_TRUE(RunUntil(FirstResult + 5.0)) << EndReason();
    ASSERT_EQ(Results(), 1U);
    SetFault("card-out");
    ASSERT_TRUE(RunUntil(FirstResult + 2 * Cycle + 5.0)) << EndReason();
    EXPECT_EQ(Results(), 1U);
    std::string error;
    EXPECT_TRUE(OnBoard().ClearFault("card-out", error)) << error;
    ASSERT_TRUE(RunUntil(FirstResult + 3 * Cycle + 5.0)) << EndReason();
    EXPECT_GT(Results(), 1U);
}

TEST_F(ProgramInExactTime, repeats_the_clip_of_an_alert_until_it_is_over) {
    MakeBoardAndStart();
    SetChlorine(0.8);
    ASSERT_TRUE(RunUntil(FirstResult - 5.0)) << EndReason();
    EXPECT_EQ(OnBoard().LoopingClip(), "");
    ASSERT_TRUE(RunUntil(FirstResult + 10.0)) << EndReason();
    EXPECT_EQ(OnBoard().LoopingClip(), "alert.wav");
    const std::size_t calls = OnBoard().SoundCalls().size();
    EXPECT_EQ(OnBoard().SoundCalls().back(), "aplay -q /usr/share/vorn/bin/alert.wav");
    SetChlorine(0.2);
    ASSERT_TRUE(RunUntil(FirstResult + 60.0)) << EndReason();
    EXPECT_GT(OnBoard().SoundCalls().size(), calls + 5);
    ASSERT_TRUE(RunUntil(FirstResult + Cycle + 20.0)) << EndReason();
    EXPECT_EQ(OnBoard().LoopingClip(), "");
    EXPECT_FALSE(OnBoard().SoundPlaying());
    const std::size_t last = OnBoard().SoundCalls().size();
    ASSERT_TRUE(RunUntil(FirstResult + Cycle + 60.0)) << EndReason();
    EXPECT_EQ(OnBoard().SoundCalls().size(), last);
}

TEST_F(ProgramInExactTime, meets_a_call_that_fails) {
    MakeBoard();
    ASSERT_TRUE(OnBoard().FailCall("socket", 1, EMFILE));
    Start();
    ASSERT_TRUE(RunUntil(100.0)) << EndReason();
    EXPECT_EQ(CountOf(Log(), "Unable to create Socket\n"), 1U) << Log();
}

TEST_F(ProgramInExactTime, is_killed_at_a_call_and_goes_on_when_it_is_started_again) {
    MakeBoardAndStart();
    ASSERT_TRUE(RunUntil(FirstResult + 5.0)) << EndReason();
    const std::uint64_t events = OnBoard().Exact().events;
    ASSERT_TRUE(OnBoard().KillAtCall("write", 5));
    EXPECT_FALSE(RunUntil(FirstResult + 1000.0));
    EXPECT_THAT(EndReason(), HasSubstr("Killed"));
    const double killed = OnBoard().Seconds();
    EXPECT_GT(killed, FirstResult + 5.0);
    EXPECT_LT(killed, FirstResult + Cycle);
    Start();
    ASSERT_TRUE(RunUntil(killed + FirstResult + 5.0)) << EndReason();
    EXPECT_NEAR(OnBoard().Seconds(), killed + FirstResult + 5.0, 1e-4);
    EXPECT_EQ(Results(), 2U);
    EXPECT_GT(OnBoard().Exact().events, 2 * events);
}

TEST_F(ProgramInExactTime, is_started_again_after_it_was_ended_in_a_pause) {
    MakeBoardAndStart();
    ASSERT_TRUE(RunUntil(50.0)) << EndReason();
    std::string error;
    ASSERT_TRUE(analyzer.Restart(error)) << error;
    ASSERT_TRUE(RunUntil(50.0 + FirstResult + 5.0)) << EndReason();
    EXPECT_NEAR(OnBoard().Seconds(), 50.0 + FirstResult + 5.0, 1e-4);
    EXPECT_EQ(Results(), 1U);
}

}  // namespace Bench
