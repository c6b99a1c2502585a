#include "Bench/Deterministic/Simulation.h"

#include <linux/futex.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <optional>
#include <utility>

#include "Bench/Board/Attachment.h"
#include "Bench/Deterministic/Next.h"
#include "Bench/Deterministic/Unwatched.h"
#include "Bench/Deterministic/Watchdog.h"

namespace Bench::Simulation {

namespace {

// A thread of the process. It exists until it has ended and been joined or detached.
struct Native {
    bool taken = false;
    bool ended = false;
    bool detached = false;
    int number = -1;  // in the scheduler, until it ends
    std::atomic<std::uint32_t> go{0};
    pid_t kernelId = 0;
    pthread_t self{};
    void* (*routine)(void*) = nullptr;
    void* argument = nullptr;
};

// Everything is changed by the holder of the token alone.
struct Run {
    Run(const Policy& policy, std::int64_t now) : scheduler(policy, now) {}

    Scheduler scheduler;
    EventTrace trace;
    std::uint64_t switches = 0;
    Native natives[Scheduler::MaxThreads];
    Native* byNumber[Scheduler::MaxThreads] = {};
};

alignas(Run) unsigned char runMemory[sizeof(Run)];
Run* run = nullptr;  // null: no simulation
BoardState* board = nullptr;
pid_t leaving = 0;  // the kernel's thread that has given the token away and still ends
std::atomic<pid_t> holder{0};

[[gnu::tls_model("initial-exec")]] thread_local Native* current = nullptr;

std::int64_t OrdinalOf(int number) { return run->scheduler.At(number).ordinal; }

void Publish() { board->clock.exactNow.store(run->scheduler.Now(), std::memory_order_relaxed); }

// ---- The token.

long Futex(const std::atomic<std::uint32_t>& word, int operation, std::uint32_t value) {
    return Next::syscall(SYS_futex, &word, operation, value, nullptr, nullptr, 0);
}

// The memory and the stack of a thread that ends are free for the next one at the same moment in each run.
void AwaitLeaving() {
    const pid_t gone = leaving;
    leaving = 0;
    if (gone == 0) {
        return;
    }
    const long process = Next::syscall(SYS_getpid);
    while (Next::syscall(SYS_tgkill, process, gone, 0) == 0) {
        Next::syscall(SYS_sched_yield);
    }
}

void Give(Native& native) {
    native.go.store(1, std::memory_order_release);
    Futex(native.go, FUTEX_WAKE_PRIVATE, 1);
}

void Park(Native& native) {
    while (native.go.load(std::memory_order_acquire) == 0) {
        Futex(native.go, FUTEX_WAIT_PRIVATE, 0);
    }
    native.go.store(0, std::memory_order_relaxed);
    holder.store(native.kernelId, std::memory_order_relaxed);
    AwaitLeaving();
}

// ---- Pauses.

void Report(bool quiet) {
    const Unwatched unwatched;
    ExactState& exact = board->exact;
    exact.quiet = quiet;
    exact.hash = run->trace.Hash();
    exact.events = run->trace.Count();
    exact.decisions = run->scheduler.Decisions();
    exact.switches = run->switches;
    Buffer text{exact.waits, sizeof(exact.waits)};
    exact.waits[0] = '\0';
    for (int i = 0; i < run->scheduler.Living(); ++i) {
        const Scheduler::Thread& thread = run->scheduler.At(run->scheduler.NumberOf(i));
        Put(text, "thread %lld %s %p", static_cast<long long>(thread.ordinal),
            WaitNames[static_cast<std::size_t>(thread.wait)], thread.object);
        if (thread.deadline != Scheduler::Forever) {
            Put(text, " until %.6f", static_cast<double>(thread.deadline - MonotonicAtStart) / 1e9);
        }
        Put(text, "\n");
    }
}

void SetPhase(ExactPhase phase) {
    board->exact.phase.store(static_cast<std::uint32_t>(phase));
    Futex(board->exact.phase, FUTEX_WAKE, INT_MAX);
}

// Threads that wait until a moment of the wall clock ask again when that moment is. To them it is a wake-up without a
// cause, which they expect.
void WakeTimed() {
    for (int i = 0; i < run->scheduler.Living(); ++i) {
        const Scheduler::Thread& thread = run->scheduler.At(run->scheduler.NumberOf(i));
        const bool lock = thread.wait == Wait::Mutex || thread.wait == Wait::Semaphore ||
                          thread.wait == Wait::Condition || thread.wait == Wait::Futex;
        if (lock && thread.deadline != Scheduler::Forever) {
            run->scheduler.Wake(thread.wait, thread.object);
        }
    }
}

void WakeWord(const std::atomic<std::uint32_t>& word) {
    run->scheduler.Wake(Wait::Word, &word);
    if (&word == &board->clock.changes) {
        WakeTimed();
    }
}

// The bench looks at the board and changes it, and sets the next moment to stop at.
void Pause(bool quiet) {
    const std::atomic<std::uint32_t>* const words[] = {&board->changes,       &board->clock.changes,
                                                       &board->wires[0].word, &board->wires[1].word,
                                                       &board->wires[2].word, &board->wires[3].word};
    std::uint32_t seen[std::size(words)];
    std::transform(std::begin(words), std::end(words), std::begin(seen), [](const auto* word) { return word->load(); });
    Report(quiet);
    if (!run->trace.Flush()) {
        Fail("the trace file could not take all events");
    }
    SetPhase(ExactPhase::Paused);
    while (board->exact.phase.load() != static_cast<std::uint32_t>(ExactPhase::Running)) {
        Futex(board->exact.phase, FUTEX_WAIT, static_cast<std::uint32_t>(ExactPhase::Paused));
    }
    for (std::size_t i = 0; i < std::size(words); ++i) {
        if (words[i]->load() != seen[i]) {
            WakeWord(*words[i]);
        }
    }
}

// ---- Who runs next.

int Choose(int running, bool yields) {
    Scheduler& scheduler = run->scheduler;
    for (;;) {
        const std::int64_t stopAt = board->exact.stopAt.load(std::memory_order_relaxed);
        if (scheduler.Now() >= stopAt ||
            (stopAt != Scheduler::Forever && std::exchange(board->exact.pauseAsked, false))) {
            Pause(false);
            continue;
        }
        if (const std::optional<int> next = scheduler.Next(running, yields)) {
            return *next;
        }
        const std::int64_t first = scheduler.FirstDeadline();
        if (first == Scheduler::Forever && stopAt == Scheduler::Forever) {
            Fail("all threads wait for each other");
        }
        scheduler.SetNow(std::min(first, stopAt));
        Publish();
        if (first >= stopAt) {
            Pause(first == Scheduler::Forever);
        }
    }
}

// Gives the token to the thread that runs next. Returns when the calling thread has it again, or at once if it has
// ended.
void Dispatch(Native& self, int number, bool yields = false) {
    const int savedErrno = errno;
    Native& next = *run->byNumber[Choose(number, yields)];
    if (&next != &self) {
        ++run->switches;
        Give(next);
        if (!self.ended) {
            Park(self);
        }
    }
    errno = savedErrno;
}

// ---- Threads.

Native& TakeNative() {
    auto* const end = std::end(run->natives);
    auto* const native = std::find_if(std::begin(run->natives), end, [](const Native& each) { return !each.taken; });
    if (native == end || run->scheduler.Living() == Scheduler::MaxThreads) {
        Fail("there are more threads than the simulation can hold");
    }
    native->taken = true;
    native->ended = native->detached = false;
    native->go.store(0, std::memory_order_relaxed);
    return *native;
}

// Only a thread that exists may be chosen.
void Schedule(Native& native) {
    native.number = *run->scheduler.Add();
    run->byNumber[native.number] = &native;
}

void EndThread(Native& self) {
    Point(Event::End);
    const int number = self.number;
    self.ended = true;
    run->scheduler.End(number);
    run->scheduler.Wake(Wait::Thread, &self);
    self.taken = !self.detached;
    leaving = self.kernelId;
    current = nullptr;
    Dispatch(self, number);
}

// Also if the thread ends by pthread_exit.
struct Ender {
    explicit Ender(Native& native) : m_native(native) {}
    ~Ender() { EndThread(m_native); }
    Ender(const Ender&) = delete;
    Ender& operator=(const Ender&) = delete;

private:
    Native& m_native;
};

void* Body(void* argument) {
    Native& self = *static_cast<Native*>(argument);
    self.kernelId = static_cast<pid_t>(Next::syscall(SYS_gettid));
    Park(self);
    errno = 0;
    current = &self;
    const Ender ender(self);
    run->trace.Add(Event::Begin, Now(), OrdinalOf(self.number), 0);
    return self.routine(self.argument);
}

Native* FindNative(pthread_t thread) {
    auto* const end = std::end(run->natives);
    auto* const native = std::find_if(std::begin(run->natives), end, [thread](const Native& each) {
        return each.taken && pthread_equal(each.self, thread) != 0;
    });
    return native == end ? nullptr : native;
}

// ---- The board's waits.

int WaitForWord(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::int64_t nanoSeconds) {
    Point(Event::WordWait);
    if (word.load() != expected) {
        return 0;
    }
    const std::int64_t deadline = nanoSeconds == WithoutEnd ? Scheduler::Forever : Now() + nanoSeconds;
    return Block(Wait::Word, &word, deadline) ? 0 : ETIMEDOUT;
}

constexpr TimeSource Source{Runs, WaitForWord, WakeWord, [] { Point(Event::Device); }, Unwatched::Set};

}  // namespace

void Fail(const char* reason) {
    Report(true);
    ExactState& exact = board->exact;
    std::snprintf(exact.failure, sizeof(exact.failure), "%s", reason);
    run->trace.Close();
    SetPhase(ExactPhase::Over);
    std::fprintf(stderr, "\nexact time: %s\n%s", reason, exact.waits);
    std::fflush(stderr);
    std::_Exit(70);
}

void Begin(Stops stops, int patienceSeconds) {
    Next::FindAll();
    Unwatched::FindAll();
    board = AttachedState();
    ExactState& exact = board->exact;
    if (stops == Stops::Never) {
        exact.stopAt.store(Scheduler::Forever);
    }
    std::string error;
    const std::optional<Policy> policy = Policy::Read(exact.policy, exact.seed, error);
    if (!policy) {
        std::fprintf(stderr, "exact time: %s\n", error.c_str());
        std::_Exit(2);
    }
    run = new (runMemory) Run(*policy, MonotonicNow(board->clock));
    run->trace.Continue(exact.hash, exact.events);
    if (exact.traceFile[0] != '\0' && !run->trace.Open(exact.traceFile, exact.traceFrom, exact.traceTo)) {
        std::fprintf(stderr, "exact time: %s: %s\n", exact.traceFile, std::strerror(errno));
        std::_Exit(1);
    }
    current = &TakeNative();
    Schedule(*current);
    current->self = pthread_self();
    current->kernelId = static_cast<pid_t>(Next::syscall(SYS_gettid));
    holder.store(current->kernelId);
    SetTimeSource(&Source);
    StartWatchdog(run->trace, exact.phase, holder, patienceSeconds);
}

void End() {
    if (!Runs()) {
        return;
    }
    SetTimeSource(nullptr);
    StopWatchdog();
    Report(false);
    if (!run->trace.Close()) {
        std::fprintf(stderr, "exact time: %s could not take all events\n", board->exact.traceFile);
        std::_Exit(1);
    }
    SetPhase(ExactPhase::Over);
    current = nullptr;
    run = nullptr;
}

void EndAfterThreads() {
    if (!Runs()) {
        return;
    }
    for (const Native& native : run->natives) {
        while (native.taken && native.detached && !native.ended) {
            Block(Wait::Thread, &native);
        }
    }
    if (run->scheduler.Living() > 1) {
        Fail("the test is over and has threads that have not ended");
    }
    End();
}

void Leave() {
    SetTimeSource(nullptr);
    current = nullptr;
    run = nullptr;
}

bool Runs() { return current != nullptr; }

std::int64_t Now() { return run->scheduler.Now(); }

void Point(Event event, std::int64_t cost, std::int64_t result) {
    Native& self = *current;
    Scheduler& scheduler = run->scheduler;
    const int number = self.number;
    scheduler.Spend(cost);
    Publish();
    run->trace.Add(event, scheduler.Now(), OrdinalOf(number), result);
    if (const std::int64_t held = scheduler.Stall(); held > 0) {
        run->trace.Add(Event::Stall, scheduler.Now(), OrdinalOf(number), held);
        scheduler.Block(number, Wait::Stall, nullptr, scheduler.Now() + held);
    }
    Dispatch(self, number, event == Event::Yield);
}

bool Block(Wait wait, const void* object, std::int64_t deadline) {
    Native& self = *current;
    const int number = self.number;
    run->scheduler.Block(number, wait, object, deadline);
    run->trace.Add(Event::Block, Now(), OrdinalOf(number), static_cast<std::int64_t>(wait));
    Dispatch(self, number);
    return !run->scheduler.TimedOut(number);
}

int Wake(Wait wait, const void* object, int most) { return run->scheduler.Wake(wait, object, most); }

int Create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*), void* argument) {
    Point(Event::Create);
    Native& native = TakeNative();
    native.routine = routine;
    native.argument = argument;
    int detached = PTHREAD_CREATE_JOINABLE;
    if (attributes != nullptr) {
        pthread_attr_getdetachstate(attributes, &detached);
    }
    native.detached = detached == PTHREAD_CREATE_DETACHED;
    const int error = Next::pthread_create(thread, attributes, Body, &native);
    if (error != 0) {
        native.taken = false;
        return error;
    }
    native.self = *thread;
    Schedule(native);
    Point(Event::Create, CallCost, OrdinalOf(native.number));
    return 0;
}

void AwaitEnd(pthread_t thread) {
    Point(Event::Join);
    Native* native = FindNative(thread);
    while (native != nullptr && !native->ended) {
        Block(Wait::Thread, native);
    }
    if (native != nullptr) {
        native->taken = false;
    }
}

void Detach(pthread_t thread) {
    if (Native* native = FindNative(thread); native != nullptr) {
        native->detached = true;
        native->taken = !native->ended;
    }
}

std::int64_t MomentOf(clockid_t clock, const timespec& until) {
    const bool wall = clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE;
    return wall ? MonotonicAt(board->clock, NanoSecondsOf(until)) : NanoSecondsOf(until);
}

}  // namespace Bench::Simulation
