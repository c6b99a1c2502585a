// The router against a model of it: each controller gets exactly the messages that it registered for, in order,
// whatever the order of registering.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>
#include <set>

#include "Frameworks/Messaging/MeasurementStatusMessage.h"
#include "Tests/Frameworks/Messaging/RecordingController.h"
#include "Tests/Support/RandomSeed.h"

namespace {

constexpr int Threads = 5;
constexpr int Rounds = 60;
constexpr int MessagesPerRound = 40;

class RoutingModel : public RouterFixture {
protected:
    RoutingModel() : seed(RandomSeed()), random(seed) {
        for (int index = 0; index < Threads; ++index) {
            threads.push_back(&Add(("Thread" + std::to_string(index)).c_str()));
            threads.back()->CreateThread();
            expected.push_back({"init"});
        }
        router.RegisterCommand(threads.front(), MOVE_TO_SHUTDOWN);
    }

    int Random(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); }

    void RegisterSomeone() {
        static constexpr CommandType commands[] = {PRIME_SYSTEM, COLLECT_MEASUREMENT, MOVE_TO_IDLE, RESET_SYSTEM};
        const int index = Random(Threads);
        RecordingController* thread = threads[static_cast<std::size_t>(index)];
        if (Random(5) == 0) {
            EXPECT_EQ(router.RegisterDataMessage(thread, MEASUREMENT_STATUS_MESSAGE), dataModel.insert(index).second);
        } else {
            const CommandType command = commands[Random(4)];
            EXPECT_EQ(router.RegisterCommand(thread, command), commandModel[command].insert(index).second);
        }
    }

    void SendSomething() {
        RecordingController& sender = *threads.front();
        if (Random(4) == 0) {
            auto status = std::make_unique<MeasurementStatusMessage>();
            status->SetSource(&sender);
            status->SetDestination(&router);
            MessageBase::Send(std::move(status));
            Expect(dataModel, "MEASUREMENT_STATUS_MESSAGE");
        } else {
            const auto command = static_cast<CommandType>(Random(CommandCount));
            if (command != KILLING_SYSTEM && command != MOVE_TO_SHUTDOWN) {
                sender.SendCommand(command);
                Expect(commandModel[command], CommandNames[command].Text());
            }
        }
    }

    // Once this has arrived, the router has handled everything that was sent before.
    void SendEndOfRound() {
        threads.front()->SendCommand(MOVE_TO_SHUTDOWN);
        expected.front().push_back("MOVE_TO_SHUTDOWN");
        ASSERT_EQ(threads.front()->WaitForNotes(expected.front().size()), expected.front());
    }

    void Expect(const std::set<int>& receivers, const std::string& note) {
        for (const int index : receivers) {
            expected[static_cast<std::size_t>(index)].push_back(note);
        }
    }

    const unsigned seed;
    std::mt19937 random;
    std::vector<RecordingController*> threads;
    std::vector<std::vector<std::string>> expected;
    std::map<CommandType, std::set<int>> commandModel;
    std::set<int> dataModel;
};

}  // namespace

TEST_F(RoutingModel, delivers_what_each_controller_registered_for_in_order) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    for (int round = 0; round < Rounds; ++round) {
        RegisterSomeone();
        for (int count = 0; count < MessagesPerRound; ++count) {
            SendSomething();
        }
        SendEndOfRound();
        for (std::size_t index = 0; index < threads.size(); ++index) {
            ASSERT_EQ(threads[index]->WaitForNotes(expected[index].size()), expected[index]) << "round " << round;
        }
    }
}
