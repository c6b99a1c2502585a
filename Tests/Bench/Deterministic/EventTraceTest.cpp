#include "Bench/Deterministic/EventTrace.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <set>

#include "Tests/Support/ReadFile.h"
#include "Tests/Support/TemporaryFolder.h"

namespace Bench {

namespace {

struct OneEvent {
    Event event = Event::Lock;
    std::int64_t now = 1000000000123;
    std::int64_t thread = 4;
    std::int64_t result = 9;
};

std::uint64_t HashOf(const std::vector<OneEvent>& events) {
    EventTrace trace;
    for (const OneEvent& each : events) {
        trace.Add(each.event, each.now, each.thread, each.result);
    }
    return trace.Hash();
}

class TraceFile : public testing::Test {
protected:
    // Five events, one of each thread 0 to 4.
    void Record(std::uint64_t from, std::uint64_t to) {
        ASSERT_TRUE(trace.Open(Path().c_str(), from, to));
        for (int i = 0; i < 5; ++i) {
            trace.Add(Event::SemaphorePost, 1000000000007 + i, i, 20 + i);
        }
    }

    std::string Path() const { return m_folder / "trace"; }

    EventTrace trace;

private:
    TemporaryFolder m_folder;
};

}  // namespace

TEST(TraceHash, is_the_same_for_the_same_events) {
    EXPECT_EQ(HashOf({{}, {Event::Unlock, 5, 6, 7}}), HashOf({{}, {Event::Unlock, 5, 6, 7}}));
}

TEST(TraceHash, depends_on_each_field_on_each_event_and_on_their_order) {
    const OneEvent other{Event::Unlock};
    std::set<std::uint64_t> hashes;
    for (const std::vector<OneEvent>& events : std::vector<std::vector<OneEvent>>{
             {},
             {{}},
             {other},
             {{Event::Lock, 1000000000124}},
             {{Event::Lock, 1000000000123, 5}},
             {{Event::Lock, 1000000000123, 4, 8}},
             {{}, {}},
             {{}, other},
             {other, {}},
         }) {
        hashes.insert(HashOf(events));
    }
    EXPECT_EQ(hashes.size(), 9U);
}

TEST(TraceHash, goes_on_from_that_of_an_earlier_process) {
    EventTrace first;
    first.Add(Event::Lock, 1, 2, 3);
    EventTrace second;
    second.Continue(first.Hash(), first.Count());
    second.Add(Event::Unlock, 4, 5, 6);
    EXPECT_EQ(second.Hash(), HashOf({{Event::Lock, 1, 2, 3}, {Event::Unlock, 4, 5, 6}}));
    EXPECT_EQ(second.Count(), 2U);
    // Without an earlier process there is nothing to go on from.
    EventTrace alone;
    alone.Continue(77, 0);
    EXPECT_EQ(alone.Hash(), HashOf({}));
}

TEST(TraceHash, does_not_depend_on_the_file) {
    TemporaryFolder folder;
    EventTrace trace;
    ASSERT_TRUE(trace.Open((folder / "trace").c_str(), 1, 1));
    trace.Add(Event::Lock, 1, 2, 3);
    EXPECT_EQ(trace.Hash(), HashOf({{Event::Lock, 1, 2, 3}}));
}

TEST(TraceBeat, changes_with_each_event) {
    EventTrace trace;
    const std::uint32_t before = trace.Beat();
    trace.Add(Event::Lock, 1, 2, 3);
    EXPECT_NE(trace.Beat(), before);
}

TEST_F(TraceFile, has_the_events_of_the_window_a_line_each) {
    Record(2, 4);
    EXPECT_TRUE(trace.Close());
    EXPECT_EQ(ReadFile(Path()),
              "2 1000.000000008 thread 1 semaphore-post 21\n"
              "3 1000.000000009 thread 2 semaphore-post 22\n"
              "4 1000.000000010 thread 3 semaphore-post 23\n");
}

TEST_F(TraceFile, of_a_later_process_of_the_run_is_the_same_one) {
    Record(1, 1);
    EXPECT_TRUE(trace.Close());
    EventTrace next;
    next.Continue(trace.Hash(), 5);
    ASSERT_TRUE(next.Open(Path().c_str(), 6, 6));
    next.Add(Event::Stall, 2000000000005, 12, -3);
    next.Add(Event::Stall, 2, 3, 4);
    EXPECT_TRUE(next.Close());
    EXPECT_EQ(ReadFile(Path()), "1 1000.000000007 thread 0 semaphore-post 20\n6 2000.000000005 thread 12 stall -3\n");
}

TEST_F(TraceFile, names_each_event) {
    ASSERT_TRUE(trace.Open(Path().c_str(), 1, 100));
    constexpr int Events = static_cast<int>(Event::Kill) + 1;
    for (int i = 0; i < Events; ++i) {
        trace.Add(static_cast<Event>(i), 0, 0, 0);
    }
    EXPECT_TRUE(trace.Close());
    std::istringstream lines(ReadFile(Path()));
    std::set<std::string> names;
    for (std::string number, moment, word, thread, name, result;
         lines >> number >> moment >> word >> thread >> name >> result;) {
        names.insert(name);
    }
    EXPECT_EQ(names.size(), static_cast<std::size_t>(Events));
    EXPECT_TRUE(names.count("create") == 1 && names.count("kill") == 1);
}

TEST_F(TraceFile, keeps_all_lines_of_a_long_window) {
    ASSERT_TRUE(trace.Open(Path().c_str(), 1, 2000));
    for (int i = 0; i < 3000; ++i) {
        trace.Add(Event::ConditionSignal, INT64_MAX, INT64_MAX, INT64_MIN);
    }
    EXPECT_TRUE(trace.Close());
    const std::string text = ReadFile(Path());
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2000);
    EXPECT_TRUE(
        text.ends_with("2000 9223372036.854775807 thread 9223372036854775807 condition-signal "
                       "-9223372036854775808\n"));
}

TEST_F(TraceFile, that_can_not_be_made_is_an_error_with_its_errno) {
    EXPECT_FALSE(trace.Open((Path() + "/no/such").c_str(), 1, 9));
    EXPECT_EQ(errno, ENOENT);
    trace.Add(Event::Lock, 1, 2, 3);
    EXPECT_TRUE(trace.Close());  // nothing was asked of it
}

TEST_F(TraceFile, on_a_full_disk_is_an_error_of_the_end) {
    ASSERT_TRUE(trace.Open("/dev/full", 1, 9));
    trace.Add(Event::Lock, 1, 2, 3);
    EXPECT_FALSE(trace.Close());
    EXPECT_FALSE(trace.Close());
}

}  // namespace Bench
