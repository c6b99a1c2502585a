// Hardware tests of the board: supply rails, audio amplifier and motor stages, each judged by a measured voltage. A
// failed test is logged and requests amber for the analyzer's side of the remote indicator. Tests of the amplifier and
// the motors sleep at least six seconds while the indicator's thread stops, plays and restarts its sound. One thread at
// a time.
#pragma once

#include <cstdint>
#include <list>

class HardwareTests {
public:
    // A HardwareTestSelector; a run of all ends at the first test that fails. Any other selector counts as failed.
    bool Run(std::int32_t selector);

    // Returns the verdict; a test that cannot be carried out has failed.
    bool CheckBoardVoltages();
    bool TestAudioAmplifier();
    bool TestReagentMotor();
    bool TestStirMotor();

private:
    std::list<float> m_voltages;  // of the last check, by channel
};
