#include "Drivers/ValvePWM.h"

#include "Drivers/Print.h"
#include "Drivers/Wait.h"

bool ValvePWM::Initialize() {
    m_pwm.reset();
    m_pwm = std::make_unique<PwmChannel>(m_channel);
    m_initialized = true;
    return m_initialized;
}

void ValvePWM::SetSwitchValues(std::int32_t switchDelay, float holdDuty) {
    m_switchDelay = switchDelay;
    m_holdDuty = holdDuty;
}

bool ValvePWM::ValveOn(float dutyCycle) {
    if (!m_initialized) {
        return false;
    }
    if (!m_pwm->Set(m_frequency, dutyCycle)) {
        return FailWithOutput("ValvePWM::ValveOn: valve did not successfully turn on");
    }
    if (m_switchDelay <= 0) {
        return true;
    }
    SpinFor(static_cast<std::uint32_t>(m_switchDelay));
    return m_pwm->Set(m_frequency, m_holdDuty);
}

bool ValvePWM::ValveOff() {
    if (!m_initialized) {
        return false;
    }
    const bool closed = m_pwm->Enable(false);
    if (!closed) {
        PrintOutput("ValvePWM::ValveOff: error turning valve off");
    }
    return closed;
}
