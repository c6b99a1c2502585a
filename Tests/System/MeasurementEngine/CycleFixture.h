// Whole cycles from a settings file: install the settings, run, end, and look at what the cycle left.
#pragma once

#include <sched.h>

#include "System/MeasurementEngine/MeasurementControl.h"
#include "Tests/System/MeasurementEngine/MeasurementFixture.h"
#include "Tests/System/MeasurementEngine/TestSettings.h"

inline const std::string Waiting = "Waiting for Next Measurement Initiation";
inline const std::string Aborted = "Aborted Measurement Cycle";

class Cycle : public MeasurementFixture {
protected:
    ~Cycle() override {
        control.reset();
        RemoveSettings();
    }

    void Install() { ASSERT_TRUE(settings.Install(Folder())); }

    // Starts a cycle and waits for its last status text, which is that of the Nth cycle.
    void Run(std::size_t cycle = 1) {
        ASSERT_TRUE(control->StartMeasurement());
        WaitForCycles(cycle);
    }

    void WaitForCycles(std::size_t cycles) {
        listener.Wait([&] {
            std::size_t ended = 0;
            for (const auto& message : listener.MessagesLocked()) {
                if (Listener::TypeOf(*message) == MEASUREMENT_STATUS_MESSAGE) {
                    const std::string text =
                        static_cast<const MeasurementStatusMessage&>(*message).GetStatusInfo().GetText().Text();
                    ended += static_cast<std::size_t>(text == Waiting || text == Aborted);
                }
            }
            return ended >= cycles;
        });
    }

    // A second start succeeds only when the first cycle's thread has said that it is through.
    void RunAgain(std::size_t cycle) {
        while (!control->StartMeasurement()) {
            sched_yield();
        }
        WaitForCycles(cycle);
    }

    // Joins the cycle's thread, so that all that it does is done.
    void End() { control.reset(); }

    TestSettings settings;
    std::unique_ptr<MeasurementControl> control = std::make_unique<MeasurementControl>();
};
