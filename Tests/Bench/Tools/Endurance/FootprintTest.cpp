#include "Bench/Tools/Endurance/Footprint.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>

#include "Bench/Tools/Endurance/Random.h"

namespace {

// Fifteen readings, three of them warm-up; `late` is what the last four differ by.
Bench::FootprintSeries Series(const Bench::Footprint& late) {
    Bench::FootprintSeries series;
    for (int reading = 0; reading < 15; ++reading) {
        Bench::Footprint footprint{5000, 30, 12, 0};
        if (reading < 3) {
            footprint.memory = 1000;
        } else if (reading >= 11) {
            footprint = {5000 + late.memory, 30 + late.descriptors, 12 + late.threads, late.zombies};
        }
        series.Add(footprint);
    }
    return series;
}

}  // namespace

TEST(Footprints, that_stay_are_flat) {
    const Bench::FootprintSeries series = Series({});
    EXPECT_TRUE(series.IsFlat());
    EXPECT_EQ(series.Describe(),
              "memory 5000 to 5000 KiB (peak 5000), descriptors 30 to 30 (peak 30), threads 12 to 12 (peak 12), "
              "zombies 0 to 0 (peak 0)");
}

TEST(Footprints, may_grow_within_the_limits) {
    EXPECT_TRUE(Series({2548, 0, 0, 0}).IsFlat());
    EXPECT_FALSE(Series({2549, 0, 0, 0}).IsFlat());
    EXPECT_TRUE(Series({0, 1, 1, 1}).IsFlat());
    EXPECT_FALSE(Series({0, 2, 0, 0}).IsFlat());
    EXPECT_FALSE(Series({0, 0, 2, 0}).IsFlat());
    EXPECT_FALSE(Series({0, 0, 0, 2}).IsFlat());
}

TEST(Footprints, that_grow_are_named) {
    EXPECT_EQ(Series({0, 2, 0, 0}).Describe(),
              "memory 5000 to 5000 KiB (peak 5000), descriptors 30 to 32 (peak 32) GREW, threads 12 to 12 (peak 12), "
              "zombies 0 to 0 (peak 0)");
}

TEST(Footprints, of_this_process_count_its_descriptors_and_memory) {
    const auto before = Bench::ReadFootprint(getpid());
    const int opened = open("/dev/null", O_RDONLY | O_CLOEXEC);
    constexpr std::size_t Size = 32U << 20U;
    auto block = std::make_unique<char[]>(Size);
    for (std::size_t at = 0; at < Size; at += 4096) {
        static_cast<volatile char*>(block.get())[at] = 1;
    }
    const auto with = Bench::ReadFootprint(getpid());
    close(opened);
    ASSERT_TRUE(before && with);
    EXPECT_EQ(with->descriptors, before->descriptors + 1);
    EXPECT_GE(with->memory, before->memory + 30'000);
    EXPECT_GE(with->threads, 1);
}

TEST(Footprints, count_zombies) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(0);
    }
    siginfo_t ended{};
    waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT);
    const auto with = Bench::ReadFootprint(getpid());
    waitpid(child, nullptr, 0);
    const auto without = Bench::ReadFootprint(getpid());
    ASSERT_TRUE(with && without);
    EXPECT_EQ(with->zombies, without->zombies + 1);
}

TEST(Footprints, of_no_process_are_none) {
    EXPECT_FALSE(Bench::ReadFootprint(-1).has_value());
    const pid_t child = fork();
    if (child == 0) {
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    EXPECT_FALSE(Bench::ReadFootprint(child).has_value());
}

TEST(Random, depends_on_the_seed_alone) {
    Bench::Random first(7);
    Bench::Random second(7);
    for (int roll = 0; roll < 100; ++roll) {
        ASSERT_EQ(first.Between(3, 9), second.Between(3, 9));
    }
    EXPECT_EQ(first.Bytes(40), second.Bytes(40));
    EXPECT_NE(Bench::Random(7).Bytes(40), Bench::Random(8).Bytes(40));
}
