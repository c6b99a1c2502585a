#include "Benchmarks/RouterBenchmarks.h"

// Headers of a library, whose warnings are not ours.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
#pragma GCC diagnostic ignored "-Wnull-dereference"
#pragma GCC diagnostic ignored "-Wundef"
#include <caf/all.hpp>
#pragma GCC diagnostic pop

#include <vector>

#include "Benchmarks/CountingController.h"
#include "Benchmarks/Stopwatch.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Messaging/MessagingControl.h"

namespace {

constexpr int Broadcasts = 1000;
constexpr int ManyBroadcasts = 10000;
constexpr int Controllers = 9;  // the router is one of them

// The nine controllers with the real router, which follows a command like the others.
class OurControllers {
public:
    OurControllers() {
        MessageController::SetLogLevel(INFORMATIONAL_LOG_LEVEL);
        MessageBase::SetMessagingControl(&m_router);
        m_router.RegisterForCommand(COLLECT_MEASUREMENT);
        for (int number = 0; number < ControllerCount; ++number) {
            if (number != MESSAGING_CONTROL) {
                m_others.push_back(
                    std::make_unique<CountingController>(ControllerNames[number].CString(), m_countdown));
                m_others.back()->WaitUntilReady();
                m_others.back()->RegisterForCommand(COLLECT_MEASUREMENT);
            }
        }
    }

    ~OurControllers() {
        MessageBase::SetMessagingControl(nullptr);
        m_router.Kill();
        pthread_join(m_router.GetThreadId(), nullptr);
    }

    OurControllers(const OurControllers&) = delete;
    OurControllers& operator=(const OurControllers&) = delete;

    void Send(int broadcasts) {
        m_countdown.Expect(broadcasts * Controllers);
        for (int sent = 0; sent < broadcasts; ++sent) {
            m_others.front()->SendCommand(COLLECT_MEASUREMENT);
        }
        m_countdown.Wait();
    }

private:
    // The real router, which counts its own clone as the others do.
    class CountingRouter : public MessagingControl {
    public:
        explicit CountingRouter(Countdown& countdown) : m_countdown(countdown) {}

        bool ProcessCommandMessage(CommandMessage* message) override {
            const bool isOwn = message->GetSendCount() > 1;
            const bool result = MessagingControl::ProcessCommandMessage(message);
            if (isOwn) {
                m_countdown.Done();
            }
            return result;
        }

    private:
        Countdown& m_countdown;
    };

    Countdown m_countdown;
    std::vector<std::unique_ptr<CountingController>> m_others;
    CountingRouter m_router{m_countdown};
};

using Forward = caf::atom_constant<caf::atom("forward")>;

// Nine actors with a thread each. The first sends each message from outside to all of them, itself included. Like our
// command, a message has a type and a time stamp.
class CafActors {
public:
    CafActors() : m_system(Configure(m_config)) {
        const auto counting = [this](caf::event_based_actor*) -> caf::behavior {
            return {[this](int, std::int64_t) { m_countdown.Done(); }};
        };
        std::vector<caf::actor> others;
        for (int number = 1; number < Controllers; ++number) {
            others.push_back(m_system.spawn<caf::detached>(counting));
        }
        m_router = m_system.spawn<caf::detached>([this, others](caf::event_based_actor* self) -> caf::behavior {
            std::vector<caf::actor> all = others;
            all.emplace_back(self);
            return {[self, all](Forward, int command, std::int64_t time) {
                        for (const caf::actor& actor : all) {
                            self->send(actor, command, time);
                        }
                    },
                    [this](int, std::int64_t) { m_countdown.Done(); }};
        });
        m_actors = std::move(others);
        m_actors.push_back(m_router);
    }

    ~CafActors() {
        for (const caf::actor& actor : m_actors) {
            caf::anon_send_exit(actor, caf::exit_reason::kill);
        }
    }

    CafActors(const CafActors&) = delete;
    CafActors& operator=(const CafActors&) = delete;

    void Send(int broadcasts) {
        m_countdown.Expect(broadcasts * Controllers);
        for (int sent = 0; sent < broadcasts; ++sent) {
            timespec time{};
            clock_gettime(CLOCK_REALTIME, &time);
            caf::anon_send(m_router, Forward::value, int{COLLECT_MEASUREMENT},
                           std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec);
        }
        m_countdown.Wait();
    }

private:
    // One worker, which sleeps: each actor has its own thread.
    static caf::actor_system_config& Configure(caf::actor_system_config& config) {
        config.set("scheduler.policy", caf::atom("sharing"));
        config.set("scheduler.max-threads", 1);
        return config;
    }

    Countdown m_countdown;
    caf::actor_system_config m_config;
    caf::actor_system m_system;
    caf::actor m_router;
    std::vector<caf::actor> m_actors;
};

template <class Receivers>
double OneByOne() {
    Receivers receivers;
    receivers.Send(Broadcasts / 10);
    return SecondsEach(
        Broadcasts, [&receivers] { receivers.Send(1); }, TimeOf::ALL_THREADS);
}

template <class Receivers>
double Many() {
    Receivers receivers;
    receivers.Send(Broadcasts / 10);
    return SecondsEach(
               1, [&receivers] { receivers.Send(ManyBroadcasts); }, TimeOf::ALL_THREADS) /
           ManyBroadcasts;
}

}  // namespace

double BroadcastOurs() { return OneByOne<OurControllers>(); }

double BroadcastCaf() { return OneByOne<CafActors>(); }

double BroadcastManyOurs() { return Many<OurControllers>(); }

double BroadcastManyCaf() { return Many<CafActors>(); }
