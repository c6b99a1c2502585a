#include <malloc.h>
#include <syslog.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <new>
#include <thread>

#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/NewProcess.h"

namespace {

// Each way to get memory; null where it fails. Read by no compiler: it may leave out a pair of malloc and free.
struct Way {
    const char* name;
    std::function<void*()> get;
};

void* volatile kept = nullptr;

const std::vector<Way>& Ways() {
    static const std::vector<Way> ways{
        {"malloc", [] { return malloc(24); }},
        {"calloc", [] { return calloc(3, 8); }},
        {"realloc", [] { return realloc(nullptr, 24); }},
        {"memalign", [] { return memalign(64, 24); }},
        {"aligned_alloc", [] { return aligned_alloc(64, 64); }},
        {"operator_new", [] { return ::operator new(24, std::nothrow); }},
        {"operator_new_of_an_alignment", [] { return ::operator new (64, std::align_val_t{64}, std::nothrow); }},
    };
    return ways;
}

// Not caught, as on a thread of the program.
void TakeUncaught() noexcept { kept = ::operator new(24); }

class WayTest : public BoardTest, public testing::WithParamInterface<Way> {};

using AllocationsTest = BoardTest;

}  // namespace

TEST_P(WayTest, an_allocation_counts_once) {
    const std::uint64_t before = Board().CallCount("allocation");
    kept = GetParam().get();
    const std::uint64_t after = Board().CallCount("allocation");
    EXPECT_NE(kept, nullptr);
    free(kept);
    EXPECT_EQ(after - before, 1U);
}

TEST_P(WayTest, an_allocation_can_be_made_to_fail) {
    const bool isSet = Board().FailCall("allocation", 1, ENOMEM);
    errno = 0;
    kept = GetParam().get();
    const int error = errno;
    EXPECT_TRUE(isSet);
    EXPECT_EQ(kept, nullptr);
    EXPECT_EQ(error, ENOMEM);
}

INSTANTIATE_TEST_SUITE_P(Each, WayTest, testing::ValuesIn(Ways()),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_F(AllocationsTest, the_third_one_fails_and_no_other) {
    void* got[4];
    Board().FailCall("allocation", 3, ENOMEM);
    for (void*& block : got) {
        block = malloc(24);
        kept = block;
    }
    EXPECT_NE(got[0], nullptr);
    EXPECT_NE(got[1], nullptr);
    EXPECT_EQ(got[2], nullptr);
    EXPECT_NE(got[3], nullptr);
    for (void* block : got) {
        free(block);
    }
}

TEST_F(AllocationsTest, a_block_that_can_not_grow_stays) {
    kept = malloc(1);
    *static_cast<char*>(kept) = 'x';
    Board().FailCall("allocation", 1, ENOMEM);
    void* volatile grown = realloc(kept, 100000);
    EXPECT_EQ(grown, nullptr);
    EXPECT_EQ(*static_cast<char*>(kept), 'x');
    free(kept);
}

TEST_F(AllocationsTest, posix_memalign_tells_its_error) {
    void* block = nullptr;
    Board().FailCall("allocation", 1, ENOMEM);
    errno = 0;
    EXPECT_EQ(posix_memalign(&block, 64, 24), ENOMEM);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(posix_memalign(&block, 3, 24), EINVAL);
    EXPECT_EQ(posix_memalign(&block, 64, 24), 0);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 64, 0U);
    free(block);
}

TEST_F(AllocationsTest, those_of_another_thread_count) {
    const std::uint64_t before = Board().CallCount("allocation");
    std::uint64_t within = 0;
    std::thread([&] {
        const std::uint64_t begin = Board().CallCount("allocation");
        kept = malloc(24);
        free(kept);
        within = Board().CallCount("allocation") - begin;
    }).join();
    EXPECT_EQ(within, 1U);
    EXPECT_GT(Board().CallCount("allocation") - before, 1U);
}

// The board writes the line to its file, for which it takes memory in the program's thread.
TEST_F(AllocationsTest, those_of_the_board_do_not_count) {
    syslog(LOG_ERR, "%s", "first");
    const std::string text(2000, 'x');
    const std::uint64_t before = Board().CallCount("allocation");
    Board().FailCall("allocation", 1, ENOMEM);
    syslog(LOG_ERR, "%s", text.c_str());
    const std::uint64_t after = Board().CallCount("allocation");
    kept = malloc(24);
    EXPECT_EQ(kept, nullptr);
    EXPECT_EQ(after, before);
    ASSERT_EQ(Board().Log().size(), 2U);
    EXPECT_EQ(Board().Log()[1].text, text);
}

TEST_F(AllocationsTest, off_the_board_none_fails) {
    Board().FailCall("allocation", 1, ENOMEM);
    Bench::DetachThisProcess();
    kept = malloc(24);
    Bench::AttachThisProcess(Board());
    EXPECT_NE(kept, nullptr);
    free(kept);
    kept = malloc(24);
    EXPECT_EQ(kept, nullptr);
}

TEST_F(AllocationsTest, an_object_without_memory_ends_the_process) {
    testing::FLAGS_gtest_death_test_style = "fast";
    EXPECT_EXIT(
        {
            Board().FailCall("allocation", 1, ENOMEM);
            TakeUncaught();
            _exit(0);
        },
        testing::KilledBySignal(SIGABRT), "terminate called after throwing an instance of 'std::bad_alloc'");
}
