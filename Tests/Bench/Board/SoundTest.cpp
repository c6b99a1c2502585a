#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/ReadFile.h"

namespace {

using Lines = std::vector<std::string>;

std::string Little(std::uint32_t number, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) {
        text += static_cast<char>(number >> (8 * i) & 0xFFU);
    }
    return text;
}

std::string FormatChunk(std::uint32_t rate, std::uint32_t channels = 1, std::uint32_t bits = 8, std::uint32_t pcm = 1) {
    return "fmt " + Little(16, 4) + Little(pcm, 2) + Little(channels, 2) + Little(rate, 4) +
           Little(rate * channels * bits / 8, 4) + Little(channels * bits / 8, 2) + Little(bits, 2);
}

std::string Riff(const std::string& chunks) {
    return "RIFF" + Little(static_cast<std::uint32_t>(chunks.size() + 4), 4) + "WAVE" + chunks;
}

// A clip of so many samples at 8000 a second.
std::string Clip(std::uint32_t samples) {
    return Riff(FormatChunk(8000) + "data" + Little(samples, 4) + std::string(samples, '\x80'));
}

class SoundTest : public BoardTest {
protected:
    SoundTest() : BoardTest(Fast()) { std::filesystem::create_directories(Folder() + Place); }

    static Bench::BoardSetup Fast() {
        Bench::BoardSetup setup;
        setup.speed = 100.0;
        setup.noise = false;
        return setup;
    }

    void Lay(const std::string& name, const std::string& content) const {
        std::ofstream(Folder() + Place + name, std::ios::binary) << content;
    }

    void Set(const std::string& fault) const {
        std::string error;
        ASSERT_TRUE(Board().SetFault(fault, error)) << error;
    }

    // The exit status of a shell's line.
    static int Run(const std::string& line) {
        const int status = system(line.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    // How long the player takes for that file, in simulated seconds; below 0 if it refuses it.
    double PlayTime(const std::string& content) const {
        Lay("tried.wav", content);
        const double before = Board().Seconds();
        return Run("aplay -q /usr/share/vorn/bin/tried.wav 2>/dev/null") == 0 ? Board().Seconds() - before : -1.0;
    }

    static constexpr const char* Place = "/usr/share/vorn/bin/";
};

TEST_F(SoundTest, the_mixers_calls_are_kept_as_the_program_wrote_them) {
    EXPECT_EQ(Run("amixer set -q 'Output Mixer HiFi' unmute"), 0);
    EXPECT_EQ(Run("amixer set -q Master 95%,95%"), 0);
    EXPECT_EQ(Board().SoundCalls(),
              (Lines{"amixer set -q 'Output Mixer HiFi' unmute", "amixer set -q Master 95%,95%"}));
    Board().ClearSoundCalls();
    EXPECT_EQ(Run("amixer 'a'\\''b' '' "), 0);
    EXPECT_EQ(Board().SoundCalls(), Lines{"amixer 'a'\\''b' ''"});
}

TEST_F(SoundTest, a_call_is_in_the_trace_too) {
    EXPECT_EQ(Run("amixer set -q Master 1%,2%"), 0);
    EXPECT_EQ(Board().Trace(), Lines{"run amixer set -q Master 1%,2%"});
}

TEST_F(SoundTest, no_more_than_the_last_calls_are_kept) {
    EXPECT_EQ(Run("i=0; while [ $i -lt 514 ]; do amixer $i; i=$((i+1)); done"), 0);
    ASSERT_EQ(Board().SoundCalls().size(), 512U);
    EXPECT_EQ(Board().SoundCalls().front(), "amixer 2");
    EXPECT_EQ(Board().SoundCalls().back(), "amixer 513");
}

TEST_F(SoundTest, a_clip_plays_for_its_length) {
    Lay("a.wav", Clip(1200000));
    const double before = Board().Seconds();
    std::thread program([] { Run("aplay -q /usr/share/vorn/bin/a.wav"); });
    EXPECT_TRUE(Board().WaitUntil([this] { return Board().SoundPlaying(); }));
    EXPECT_EQ(Board().PlayingClip(), "a.wav");
    program.join();
    EXPECT_GE(Board().Seconds() - before, 150.0);
    EXPECT_FALSE(Board().SoundPlaying());
    EXPECT_EQ(Board().PlayingClip(), "");
    EXPECT_EQ(Board().SoundCalls(), Lines{"aplay -q /usr/share/vorn/bin/a.wav"});
}

TEST_F(SoundTest, the_supply_measure_rises_while_a_clip_plays) {
    Lay("a.wav", Clip(1200000));
    EXPECT_FALSE(Board().Inputs().audioPlaying);
    std::thread program([] { Run("aplay -q /usr/share/vorn/bin/a.wav"); });
    EXPECT_TRUE(Board().WaitUntil([this] { return Board().Inputs().audioPlaying; }));
    program.join();
    EXPECT_FALSE(Board().Inputs().audioPlaying);
}

TEST_F(SoundTest, of_overlapping_clips_the_last_end_counts) {
    Lay("long.wav", Clip(28800000));
    Lay("short.wav", Clip(80000));
    std::thread program([] { Run("aplay -q /usr/share/vorn/bin/long.wav"); });
    EXPECT_TRUE(Board().WaitUntil([this] { return Board().PlayingClip() == "long.wav"; }));
    EXPECT_EQ(Run("aplay -q /usr/share/vorn/bin/short.wav"), 0);
    EXPECT_EQ(Board().PlayingClip(), "long.wav");
    EXPECT_TRUE(Board().SoundPlaying());
    Board().Reset(Fast());
    EXPECT_FALSE(Board().SoundPlaying());
    program.join();  // a reset ends the player, long before its clip
}

TEST_F(SoundTest, a_loop_is_known_in_its_pauses_too) {
    Lay("a.wav", Clip(8));
    const pid_t child = fork();
    while (child == 0) {
        Run("aplay -q /usr/share/vorn/bin/a.wav");
        usleep(600000000);
    }
    EXPECT_TRUE(Board().WaitUntil([this] { return Board().LoopingClip() == "a.wav" && !Board().SoundPlaying(); }));
    kill(child, SIGTERM);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_EQ(Board().LoopingClip(), "");
}

TEST_F(SoundTest, a_single_clip_is_no_loop) {
    Lay("a.wav", Clip(1200000));
    std::thread program([] { Run("aplay -q /usr/share/vorn/bin/a.wav"); });
    EXPECT_TRUE(Board().WaitUntil([this] { return Board().PlayingClip() == "a.wav"; }));
    EXPECT_EQ(Board().LoopingClip(), "");
    program.join();
}

TEST_F(SoundTest, a_killed_player_is_heard_no_longer_than_its_clip) {
    Lay("a.wav", Clip(2400000));
    const std::string pidFile = Folder() + "/pid";
    std::thread program([&pidFile] { Run("aplay -q /usr/share/vorn/bin/a.wav & echo $! > '" + pidFile + "'; wait"); });
    EXPECT_TRUE(Board().WaitUntil([this] { return Board().SoundPlaying(); }));
    EXPECT_TRUE(
        Board().WaitUntil([&] { return ReadFile(pidFile).ends_with('\n'); }));  // it plays before its number is written
    EXPECT_EQ(kill(std::stoi(ReadFile(pidFile)), SIGKILL), 0);
    program.join();
    EXPECT_TRUE(Board().WaitUntil([this] { return !Board().SoundPlaying(); }));
}

TEST_F(SoundTest, the_instruments_own_clips_play) {
    EXPECT_GE(PlayTime(ReadFile(CLIPS_FOLDER "/alert.wav")), 3.0);
    EXPECT_GE(PlayTime(ReadFile(CLIPS_FOLDER "/alarm.wav")), 2.0);
}

TEST_F(SoundTest, a_clip_is_as_long_as_its_file_whatever_the_head_says) {
    EXPECT_GE(PlayTime(Riff(FormatChunk(8000) + "data" + Little(0xFFFFFFFF, 4) + std::string(80000, '\x80'))), 10.0);
    EXPECT_GE(PlayTime(Riff("LIST" + Little(3, 4) + "abc " + FormatChunk(8000, 2, 16) + "data" + Little(320000, 4) +
                            std::string(320000, '\0'))),
              10.0);
    EXPECT_GE(PlayTime(Riff(FormatChunk(8000) + "data" + Little(0xFFFFFFFF, 4))), 0.0);
}

TEST_F(SoundTest, a_file_that_is_no_clip_is_refused) {
    const std::string data = "data" + Little(8, 4) + "12345678";
    std::string manyChunks;
    for (int i = 0; i < 100; ++i) {
        manyChunks += "LIST" + Little(0, 4);
    }
    EXPECT_GE(PlayTime(Riff(FormatChunk(8000) + data)), 0.0);
    for (const std::string& content : Lines{
             "", "RIFF", "RIFX" + Riff(FormatChunk(8000) + data).substr(4), Riff(""), Riff(data),
             Riff(FormatChunk(8000)), Riff(FormatChunk(1999) + data), Riff(FormatChunk(192001) + data),
             Riff(FormatChunk(8000, 0) + data), Riff(FormatChunk(8000, 9) + data), Riff(FormatChunk(8000, 1, 0) + data),
             Riff(FormatChunk(8000, 1, 12) + data), Riff(FormatChunk(8000, 1, 40) + data),
             Riff(FormatChunk(8000, 1, 8, 3) + data), Riff("fmt " + Little(15, 4) + std::string(16, '\1') + data),
             Riff("LIST" + Little(0xFFFFFFFF, 4) + FormatChunk(8000) + data),
             Riff(manyChunks + FormatChunk(8000) + data)}) {
        EXPECT_EQ(PlayTime(content), -1.0) << testing::PrintToString(content);
    }
}

TEST_F(SoundTest, what_can_not_be_played_is_named) {
    Lay("text.wav", "no clip");
    EXPECT_EQ(Run("aplay -q /usr/share/vorn/bin/gone.wav /usr/share/vorn/bin/text.wav /usr/share/vorn/bin 2> '" +
                  Folder() + "/errors'"),
              1);
    EXPECT_EQ(ReadFile(Folder() + "/errors"),
              "aplay: /usr/share/vorn/bin/gone.wav: not a PCM clip in a RIFF file\n"
              "aplay: /usr/share/vorn/bin/text.wav: not a PCM clip in a RIFF file\n"
              "aplay: /usr/share/vorn/bin: not a PCM clip in a RIFF file\n");
}

TEST_F(SoundTest, the_players_own_calls_do_not_count) {
    Lay("a.wav", Clip(8));
    ASSERT_TRUE(Board().FailCall("fopen", 1, EIO));
    EXPECT_EQ(Run("aplay -q /usr/share/vorn/bin/a.wav"), 0);
    EXPECT_EQ(Board().CallCount("fopen"), 0U);
}

TEST_F(SoundTest, sound_tools_missing) {
    Set("sound-tools-missing");
    EXPECT_EQ(Run("aplay -q a.wav 2> '" + Folder() + "/errors'"), 127);
    EXPECT_NE(ReadFile(Folder() + "/errors").find("aplay: not found"), std::string::npos);
    EXPECT_EQ(Run("amixer set -q Master 95%,95% 2>/dev/null"), 127);
    EXPECT_EQ(Board().SoundCalls(), Lines{});
    std::string error;
    ASSERT_TRUE(Board().ClearFault("sound-tools-missing", error));
    EXPECT_EQ(Run("amixer"), 0);
}

TEST_F(SoundTest, amixer_fails) {
    Set("amixer-fails");
    EXPECT_EQ(Run("amixer set -q Master 95%,95% 2> '" + Folder() + "/errors'"), 1);
    EXPECT_EQ(ReadFile(Folder() + "/errors"), "amixer: the mixer does not answer\n");
    EXPECT_EQ(Board().SoundCalls(), Lines{"amixer set -q Master 95%,95%"});
}

TEST_F(SoundTest, a_refused_shell_runs_nothing) {
    ASSERT_TRUE(Board().FailCall("system", 1, EAGAIN));
    EXPECT_EQ(system("amixer"), -1);
    EXPECT_EQ(Board().SoundCalls(), Lines{});
    EXPECT_EQ(system(std::string(8192, ' ').c_str()), -1);
    EXPECT_EQ(errno, E2BIG);
    EXPECT_NE(system(nullptr), 0);
}

TEST_F(SoundTest, a_forked_child_runs_the_tools_on_the_same_board) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(Run("amixer child"));
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Board().SoundCalls(), Lines{"amixer child"});
}

// A player that its program forgot to stop.
TEST_F(SoundTest, a_forked_child_ends_with_the_run) {
    const pid_t child = fork();
    if (child == 0) {
        for (;;) {
            usleep(1000000);
        }
    }
    Board().Reset(Fast());
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
}

TEST_F(SoundTest, a_forked_child_ends_with_its_program) {
    Lay("a.wav", Clip(8));
    int alive[2] = {};
    ASSERT_EQ(pipe(alive), 0);  // at its end when no process can write to it
    const pid_t program = fork();
    if (program == 0) {
        const pid_t player = fork();
        while (player == 0) {
            Run("aplay -q /usr/share/vorn/bin/a.wav");
        }
        Board().WaitUntil([this] { return !Board().SoundCalls().empty(); });
        _exit(0);
    }
    close(alive[1]);
    int status = -1;
    ASSERT_EQ(waitpid(program, &status, 0), program);
    char none = 0;
    EXPECT_EQ(read(alive[0], &none, 1), 0);
    close(alive[0]);
}

TEST_F(SoundTest, a_preloaded_program_reaches_the_same_tools) {
    Bench::DetachThisProcess();
    const int status = Run("VERNICOR_BENCH='" + Folder() +
                           "' LD_PRELOAD='" BINARY_FOLDER "/Bench/libboard.so' '" BINARY_FOLDER
                           "/shell_caller' 'amixer set -q Master 95%,95%'");
    Bench::AttachThisProcess(Board());
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Board().SoundCalls(), Lines{"amixer set -q Master 95%,95%"});
}

}  // namespace
