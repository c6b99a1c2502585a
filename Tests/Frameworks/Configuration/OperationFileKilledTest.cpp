// The process is killed while it saves: the next start finds sound counters, none of them below the last completed
// save. One kill at a time, since a start writes nothing: after a cut backup only the main file is sound until the next
// complete save.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <random>

#include "Tests/Frameworks/Configuration/OperationFixture.h"
#include "Tests/Support/RandomSeed.h"

namespace {

constexpr const char* Counters[] = {"TubingRunCycles", "ReagentDeliveryRunCycles"};

// Long enough for several writes per file.
constexpr std::size_t LongText = 20000;

class KilledOperation : public OperationTest {
protected:
    // Adds one to each counter and saves, repeatedly; reports each complete save.
    static void CountAndSave(const NewProcess::Tell& tell) {
        while (true) {
            CountOnce();
            SystemOperationFile::GetInstance()->Save();
            tell("s");
        }
    }

    static void CountOnce() {
        for (const char* name : Counters) {
            SystemOperationFile::GetInstance()->AddToUnsignedCounter(name, 1);
        }
    }

    // The counters after a sound start; one more save then makes both files sound again.
    static std::uint32_t CountersAfterStart() {
        const std::string text = AfterStart([](SystemOperationFile& file) {
            StdString first = file.ReadItem(Counters[0]);
            const bool isEqual = first == file.ReadItem(Counters[1]);
            const bool isWhole = file.ReadItem("SerialNumber") == "123456789";
            file.Save();
            return isEqual && isWhole ? first.Text() : "torn";
        });
        EXPECT_NE(text, "torn");
        StdString number(text);
        return number.ToUnsigned();
    }

    static void MakeLong() {
        AfterStart([](SystemOperationFile& file) {
            file.GetItem("RemoteIndicatorRunHours")->SetDescription(std::string(LongText, 'h'));
            file.WriteItem("RemoteIndicatorRunHours", "0");
            return Text(file.Save());
        });
    }

    bool IsMainDamaged() const { return !Main().ends_with("</ROOT_ANALYZER>\n"); }
    bool IsBackupDamaged() const { return !Backup().ends_with("</ROOT_ANALYZER>\n"); }
};

struct Damage {
    int main = 0;
    int backup = 0;
};

}  // namespace

// Each file call of two consecutive saves.
TEST_F(KilledOperation, at_every_single_call_of_a_save_keeps_the_counters) {
    MakeLong();
    Damage damage;
    int kills = 0;
    for (const char* kind : {"fopen", "write", "fclose"}) {
        // Loading opens and closes the main file once.
        const int callsOfLoading = std::string(kind) == "write" ? 0 : 1;
        const std::uint64_t before = Board().CallCount(kind);
        AfterStart([](SystemOperationFile& file) {
            file.Save();
            return Text(file.Save());
        });
        const int calls = static_cast<int>(Board().CallCount(kind) - before) - callsOfLoading;
        ASSERT_GE(calls, 4) << kind;
        for (int call = 1; call <= calls; ++call, ++kills) {
            const std::uint32_t start = CountersAfterStart();
            ASSERT_TRUE(Board().KillAtCall(kind, call + callsOfLoading));
            NewProcess process(CountAndSave);
            const auto saves = static_cast<std::uint32_t>(process.Answer().size());
            const int status = process.Wait();
            ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
            damage.main += IsMainDamaged() ? 1 : 0;
            damage.backup += IsBackupDamaged() ? 1 : 0;
            EXPECT_FALSE(IsMainDamaged() && IsBackupDamaged());
            const std::uint32_t found = CountersAfterStart();
            EXPECT_GE(found, start + saves) << kind << " " << call;
            EXPECT_LE(found, start + saves + 1) << kind << " " << call;
        }
    }
    EXPECT_GE(kills, 12);
    EXPECT_GE(damage.main, 4);
    EXPECT_GE(damage.backup, 4);
}

TEST_F(KilledOperation, at_two_hundred_random_moments_keeps_the_counters) {
    const unsigned seed = RandomSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> savesBefore(1, 5);
    std::uniform_int_distribution<int> microseconds(0, 400);
    MakeLong();
    for (int kill = 0; kill < 200; ++kill) {
        const std::uint32_t start = CountersAfterStart();
        NewProcess process(CountAndSave);
        const auto wanted = static_cast<std::size_t>(savesBefore(random));
        std::string told;
        while (told.size() < wanted) {
            told += process.Next();
        }
        const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(microseconds(random));
        while (std::chrono::steady_clock::now() < end) {
        }
        process.Kill();
        told += process.Answer();
        const auto saves = static_cast<std::uint32_t>(told.size());
        const std::uint32_t found = CountersAfterStart();
        ASSERT_GE(found, start + saves) << "kill " << kill;
        ASSERT_LE(found, start + saves + 1) << "kill " << kill;
    }
}

// Nothing is written between two starts, so the second kill meets what the first one left.
TEST_F(KilledOperation, while_it_counts_keeps_the_last_save) {
    AfterStart([](SystemOperationFile& file) {
        CountOnce();
        return Text(file.Save());
    });
    for (int kill = 0; kill < 3; ++kill) {
        NewProcess process([](const NewProcess::Tell& tell) {
            CountOnce();
            tell("counted");
            pause();
        });
        EXPECT_EQ(process.Next(), "counted");
        process.Kill();
        EXPECT_EQ(TubingCyclesAfterStart(), "1");
    }
}
