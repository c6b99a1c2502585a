#include "Benchmarks/QueueBenchmarks.h"

#include <sched.h>
#include <zmq.h>

#include <thread>
#include <vector>

#include "Benchmarks/ConditionQueue.h"
#include "Benchmarks/CountingController.h"
#include "Benchmarks/Report.h"
#include "Benchmarks/Stopwatch.h"
#include "Frameworks/Messaging/MessageController.h"

namespace {

constexpr int OneWayMessages = 20000;
constexpr int RoundTrips = 2000;
constexpr int Message = PRIME_SYSTEM;
constexpr int EndOfThread = NO_COMMAND;

// The times of the trips, recorded by the asking thread.
class Trips {
public:
    Trips() { m_seconds.reserve(RoundTrips); }

    void Begin() { m_start = Now(TimeOf::THE_WALL); }
    // False after the last.
    bool End() {
        m_seconds.push_back(Now(TimeOf::THE_WALL) - m_start);
        return m_seconds.size() < RoundTrips;
    }
    double GetMedian() const { return Median(m_seconds); }

private:
    std::vector<double> m_seconds;
    double m_start = 0.0;
};

void SendCommandTo(ThreadControl& destination, ThreadControl& source) {
    auto message = std::make_unique<CommandMessage>(PRIME_SYSTEM);
    message->SetDestination(&destination);
    message->SetSource(&source);
    MessageBase::Send(std::move(message));
}

// Answers every message to its sender.
class AnsweringController : public CountingController {
public:
    using CountingController::CountingController;

    bool ProcessCommandMessage(CommandMessage* message) override {
        SendCommandTo(*message->GetSource(), *this);
        return true;
    }
};

// Sends to the other, and again at every answer.
class AskingController : public CountingController {
public:
    using CountingController::CountingController;

    void Ask(ThreadControl& other) {
        m_trips.Begin();
        SendCommandTo(other, *this);
    }

    bool ProcessCommandMessage(CommandMessage* message) override {
        if (m_trips.End()) {
            Ask(*message->GetSource());
            return true;
        }
        return CountingController::ProcessCommandMessage(message);
    }

    double GetMedian() const { return m_trips.GetMedian(); }

private:
    Trips m_trips;
};

// While it exists, neither this thread nor a thread that it creates is preempted by a thread that it wakes. Otherwise
// the scheduler decides, differently in each run, how often a burst is cut into messages that each wait for a thread.
class UncutBursts {
public:
    UncutBursts() : m_policy(sched_getscheduler(0)) {
        sched_getparam(0, &m_parameters);
        const sched_param none{};
        sched_setscheduler(0, SCHED_BATCH, &none);
    }
    UncutBursts(const UncutBursts&) = delete;
    UncutBursts& operator=(const UncutBursts&) = delete;
    ~UncutBursts() { sched_setscheduler(0, m_policy, &m_parameters); }

private:
    const int m_policy;  // before
    sched_param m_parameters{};
};

std::unique_ptr<PeerMessage> MakeMessage(int command = Message) { return std::make_unique<PeerMessage>(command); }

}  // namespace

double SendOneWayOurs() {
    const UncutBursts uncut;
    MessageController::SetLogLevel(INFORMATIONAL_LOG_LEVEL);
    Countdown countdown;
    countdown.Expect(OneWayMessages);
    CountingController receiver("Receiver", countdown);
    receiver.WaitUntilReady();
    const double start = Now(TimeOf::ALL_THREADS);
    for (int sent = 0; sent < OneWayMessages; ++sent) {
        SendCommandTo(receiver, receiver);
    }
    countdown.Wait();
    return (Now(TimeOf::ALL_THREADS) - start) / OneWayMessages;
}

double SendOneWayCondition() {
    const UncutBursts uncut;
    ConditionQueue queue;
    Countdown countdown;
    countdown.Expect(OneWayMessages);
    std::binary_semaphore ready{0};
    std::thread receiver([&] {
        ready.release();
        for (auto message = queue.Take(); message->GetCommand() != EndOfThread; message = queue.Take()) {
            countdown.Done();
        }
    });
    ready.acquire();
    const double start = Now(TimeOf::ALL_THREADS);
    for (int sent = 0; sent < OneWayMessages; ++sent) {
        queue.Post(MakeMessage());
    }
    countdown.Wait();
    const double seconds = (Now(TimeOf::ALL_THREADS) - start) / OneWayMessages;
    queue.Post(MakeMessage(EndOfThread));
    receiver.join();
    return seconds;
}

double RoundTripOurs() {
    MessageController::SetLogLevel(INFORMATIONAL_LOG_LEVEL);
    Countdown countdown;
    countdown.Expect(1);
    AnsweringController answering("Answering", countdown);
    AskingController asking("Asking", countdown);
    answering.WaitUntilReady();
    asking.WaitUntilReady();
    asking.Ask(answering);
    countdown.Wait();
    return asking.GetMedian();
}

double RoundTripCondition() {
    ConditionQueue questions;
    ConditionQueue answers;
    Trips trips;
    std::thread answering([&] {
        for (auto message = questions.Take(); message->GetCommand() != EndOfThread; message = questions.Take()) {
            answers.Post(MakeMessage());
        }
    });
    std::thread asking([&] {
        do {
            trips.Begin();
            questions.Post(MakeMessage());
            answers.Take();
        } while (trips.End());
        questions.Post(MakeMessage(EndOfThread));
    });
    asking.join();
    answering.join();
    return trips.GetMedian();
}

namespace {

// Sends a pointer, as our queues do: the message itself is not copied.
void SendByZeroMq(void* socket, std::unique_ptr<PeerMessage> message) {
    PeerMessage* pointer = message.release();
    zmq_send(socket, &pointer, sizeof pointer, 0);
}

std::unique_ptr<PeerMessage> TakeFromZeroMq(void* socket) {
    PeerMessage* pointer = nullptr;
    zmq_recv(socket, &pointer, sizeof pointer, 0);
    return std::unique_ptr<PeerMessage>(pointer);
}

}  // namespace

double RoundTripZeroMq() {
    void* context = zmq_ctx_new();
    void* questions = zmq_socket(context, ZMQ_PAIR);
    void* answers = zmq_socket(context, ZMQ_PAIR);
    zmq_bind(questions, "inproc://trips");
    zmq_connect(answers, "inproc://trips");
    Trips trips;
    std::thread answering([answers] {
        for (auto message = TakeFromZeroMq(answers); message->GetCommand() != EndOfThread;
             message = TakeFromZeroMq(answers)) {
            SendByZeroMq(answers, MakeMessage());
        }
    });
    std::thread asking([&trips, questions] {
        do {
            trips.Begin();
            SendByZeroMq(questions, MakeMessage());
            TakeFromZeroMq(questions);
        } while (trips.End());
        SendByZeroMq(questions, MakeMessage(EndOfThread));
    });
    asking.join();
    answering.join();
    zmq_close(questions);
    zmq_close(answers);
    zmq_ctx_term(context);
    return trips.GetMedian();
}
