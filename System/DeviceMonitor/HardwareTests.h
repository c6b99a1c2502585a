// The board's tests of itself: supply rails, audio amplifier and motor stages, each judged by a voltage of the board. A
// failed test is logged and turns the analyzer's side of the remote indicator amber. The tests sleep, for several
// seconds in all, while the indicator's own thread stops, plays and restarts its sound. One thread at a time.
#pragma once

#include <cstdint>
#include <list>

class HardwareTests {
public:
    // A HardwareTestSelector; a run of all ends at the first test that fails. Any other selector counts as failed.
    bool Run(std::int32_t selector);

    // The verdict; a test that can't be carried out has failed.
    bool CheckBoardVoltages();
    bool TestAudioAmplifier();
    bool TestReagentMotor();
    bool TestStirMotor();

private:
    std::list<float> m_voltages;  // by channel, of the last check
};
