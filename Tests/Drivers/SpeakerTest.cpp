#include "Drivers/Speaker.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <optional>

#include "Tests/Drivers/DriverTest.h"
#include "Tests/Support/SoundClip.h"

namespace {

const std::string Clip = "/usr/share/vorn/bin/clip.wav";
const std::string ClipCall = "aplay -q " + Clip;
constexpr std::int32_t Second = 1000000;  // microseconds

class SpeakerTest : public DriverTest {
protected:
    SpeakerTest() : DriverTest(Pace::Real) { LaySoundClip(Board().Folder(), "clip.wav", 2); }

    // So that the next test finds only its own texts in the board's files.
    ~SpeakerTest() override { std::filesystem::remove(Board().Folder() + Clip); }

    static void WaitForCalls(std::size_t count) {
        EXPECT_TRUE(Board().WaitUntil([count] { return Board().SoundCalls().size() >= count; }));
    }

    // Starts the player, waits for its first call, and hands over what went to the streams.
    Printed Start(std::int32_t gap = Second) {
        return PrintedBy([&] {
            EXPECT_TRUE(speaker->Play(Clip, gap));
            WaitForCalls(1);
        });
    }

    // As the parent printed it.
    static pid_t ChildOf(const Printed& printed) {
        const std::string mark = " and Child pid = ";
        const std::size_t at = printed.output.find(mark);
        EXPECT_NE(at, std::string::npos) << printed.output;
        return at == std::string::npos ? -1 : std::stoi(printed.output.substr(at + mark.size()));
    }

    static bool Exists(pid_t process) { return kill(process, 0) == 0; }

    static std::vector<double> TimesOf(const std::string& line) {
        std::vector<double> times;
        for (const Bench::TraceEntry& entry : Board().TraceWithTimes()) {
            if (entry.text == line) {
                times.push_back(entry.seconds);
            }
        }
        return times;
    }

    std::unique_ptr<Speaker> speaker = std::make_unique<Speaker>();
};

}  // namespace

TEST_F(SpeakerTest, is_unmuted_and_muted_at_the_mixer) {
    EXPECT_TRUE(speaker->SetUnmuted(true));
    EXPECT_TRUE(speaker->SetUnmuted(false));
    EXPECT_EQ(Board().SoundCalls(),
              (Texts{"amixer set -q 'Output Mixer HiFi' unmute", "amixer set -q 'Output Mixer HiFi' mute"}));
}

TEST_F(SpeakerTest, takes_volumes_from_0_to_100) {
    EXPECT_TRUE(speaker->SetVolume(95, 95));
    EXPECT_TRUE(speaker->SetVolume(0, 100));
    EXPECT_EQ(Board().SoundCalls(), (Texts{"amixer set -q Master 95%,95%", "amixer set -q Master 0%,100%"}));
}

TEST_F(SpeakerTest, runs_nothing_for_a_volume_out_of_range) {
    EXPECT_FALSE(speaker->SetVolume(101, 50));
    EXPECT_FALSE(speaker->SetVolume(-1, 50));
    EXPECT_FALSE(speaker->SetVolume(50, 101));
    EXPECT_FALSE(speaker->SetVolume(50, -1));
    EXPECT_EQ(Board().SoundCalls(), Texts{});
}

TEST_F(SpeakerTest, does_not_look_at_what_the_mixer_ends_with) {
    for (const char* fault : {"amixer-fails", "sound-tools-missing"}) {
        SetFault(fault);
        PrintedBy([this] {
            EXPECT_TRUE(speaker->SetUnmuted(true));
            EXPECT_TRUE(speaker->SetVolume(1, 1));
        });
        ClearFault(fault);
    }
}

TEST_F(SpeakerTest, fails_if_no_shell_can_be_started) {
    FailCall("system", 1, EAGAIN);
    EXPECT_FALSE(speaker->SetUnmuted(true));
    FailCall("system", 1, EAGAIN);
    EXPECT_FALSE(speaker->SetVolume(1, 1));
}

TEST_F(SpeakerTest, plays_again_and_again_with_the_gap_between) {
    PrintedBy([this] {
        EXPECT_TRUE(speaker->Play(Clip, 3 * Second));
        WaitForCalls(3);
    });
    const Texts calls = Board().SoundCalls();
    EXPECT_EQ(Texts(calls.begin(), calls.begin() + 3), Texts(3, ClipCall));
    const std::vector<double> times = TimesOf("run " + ClipCall);
    EXPECT_GE(times.at(1) - times.at(0), 5.0);
    EXPECT_GE(times.at(2) - times.at(1), 5.0);
}

TEST_F(SpeakerTest, prints_the_numbers_of_both_processes) {
    const Printed printed = Start();
    const std::string own = std::to_string(getpid());
    const std::string child = std::to_string(ChildOf(printed));
    const std::string parentText = "In Parent Process: Own pid = " + own + " and Child pid = " + child;
    const std::string childText = "In Child Process: Own pid = " + child + " and Parent pid = " + own;
    EXPECT_TRUE(printed.output == parentText + childText || printed.output == childText + parentText) << printed.output;
    EXPECT_EQ(printed.error, "");
}

TEST_F(SpeakerTest, refuses_a_second_play_and_goes_on_with_the_first) {
    const pid_t child = ChildOf(Start());
    EXPECT_EQ(PrintedBy([this] { EXPECT_FALSE(speaker->Play("/other.wav", 0)); }), OnError("Speaker: already in play"));
    EXPECT_TRUE(Exists(child));
    WaitForCalls(3);
    EXPECT_EQ(Board().SoundCalls().at(2), ClipCall);
    speaker->Stop();
    EXPECT_FALSE(Exists(child));
}

TEST_F(SpeakerTest, reports_a_failed_fork_and_can_play_later) {
    FailCall("fork", 1, EAGAIN);
    EXPECT_EQ(PrintedBy([this] { EXPECT_FALSE(speaker->Play(Clip, Second)); }), OnError("Speaker: error in play fork"));
    Start();
}

TEST_F(SpeakerTest, goes_on_playing_after_a_shell_that_could_not_be_started) {
    FailCall("system", 1, EAGAIN);
    const Printed printed = Start();
    EXPECT_EQ(printed.error, "Speaker: error in player");
    EXPECT_EQ(Board().SoundCalls().front(), ClipCall);
}

TEST_F(SpeakerTest, goes_on_trying_without_the_players_tool) {
    SetFault("sound-tools-missing");
    const Printed printed = PrintedBy([this] {
        EXPECT_TRUE(speaker->Play(Clip, Second / 10));
        EXPECT_TRUE(Board().WaitUntil([] { return Board().CallCount("system") >= 3; }));
        speaker->Stop();
    });
    EXPECT_NE(printed.error.find("aplay: not found\n"), std::string::npos) << printed.error;
    EXPECT_EQ(printed.error.find("Speaker"), std::string::npos) << printed.error;
}

TEST_F(SpeakerTest, stops_within_a_second_or_so_and_leaves_no_process) {
    const pid_t child = ChildOf(Start());
    const double length = SecondsOf([this] { EXPECT_TRUE(speaker->Stop()); });
    EXPECT_GE(length, 1.0);
    EXPECT_FALSE(Exists(child));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(SpeakerTest, a_playing_clip_goes_on_to_its_end) {
    LaySoundClip(Board().Folder(), "clip.wav", 60);
    Start();
    EXPECT_TRUE(Board().WaitUntil([] { return Board().SoundPlaying(); }));
    speaker->Stop();
    EXPECT_EQ(Board().PlayingClip(), "clip.wav");
    EXPECT_TRUE(Board().WaitUntil([] { return !Board().SoundPlaying(); }));
    EXPECT_EQ(Board().SoundCalls(), Texts{ClipCall});
}

TEST_F(SpeakerTest, stops_nothing_if_nothing_plays) {
    EXPECT_EQ(PrintedBy([this] { EXPECT_TRUE(speaker->Stop()); }), Silence);
    Start();
    speaker->Stop();
    EXPECT_EQ(PrintedBy([this] { EXPECT_TRUE(speaker->Stop()); }), Silence);
}

TEST_F(SpeakerTest, ends_a_player_that_does_not_hear_after_five_seconds) {
    sigset_t signals;
    sigset_t before;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, &before);  // the child inherits it
    const pid_t child = ChildOf(Start());
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    const double length = SecondsOf([this] { EXPECT_TRUE(speaker->Stop()); });
    EXPECT_GE(length, 5.0);
    EXPECT_FALSE(Exists(child));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST_F(SpeakerTest, plays_again_after_a_stop) {
    const pid_t first = ChildOf(Start());
    speaker->Stop();
    Board().ClearSoundCalls();
    EXPECT_NE(ChildOf(Start()), first);
}

TEST_F(SpeakerTest, stops_at_its_end) {
    const pid_t child = ChildOf(Start());
    speaker.reset();
    EXPECT_FALSE(Exists(child));
}
