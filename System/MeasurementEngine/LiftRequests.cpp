#include "System/MeasurementEngine/LiftRequests.h"

#include <unistd.h>

#include <array>

#include "Drivers/Adc24BitDriver.h"
#include "Drivers/Board.h"
#include "Drivers/Demultiplexer.h"
#include "Drivers/GpioPin.h"
#include "Drivers/MemoryMappedIO.h"
#include "Drivers/PwmChannel.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Utilities/Truncate.h"
#include "Frameworks/Utilities/TryMake.h"
#include "System/Messages/AdcStatusMessage.h"
#include "System/Messages/TestDigitalInputPinsMessage.h"
#include "System/Messages/TestDigitalOutputPinsMessage.h"
#include "System/Messages/TestPWMMessage.h"

namespace {

constexpr std::uint32_t FirstConverterId = 10070;
constexpr std::uint32_t ConverterIds = 14;  // two ids a channel
constexpr std::uint32_t FirstMultiplexerId = 10086;
constexpr std::uint32_t MultiplexerIds = 16;
constexpr std::uint32_t BankCount = 4;
constexpr float FirstFrequency = 1000.0F;
constexpr float FirstDutyCycle = 50.0F;

// One for each PWM channel, made on first use and never deleted: the test link leaves a channel running to
// the end of the process.
std::array<PwmChannel*, 4> liftPwmTable{};

// False if the answer is null because memory ran out.
template <typename Message>
bool Answer(std::unique_ptr<Message> message) {
    if (message != nullptr) {
        message->SetSubType(RESPONSE_SUB_TYPE);
    }
    return MessageController::SendMessage(std::move(message), MEASUREMENT_ENGINE);
}

std::int32_t ReadConverter(std::uint32_t channel) {
    Adc24BitDriver driver(channel);
    return driver.Read(true) ? driver.GetValue() : 0;
}

// Millivolts.
std::int32_t ReadMultiplexer(std::uint32_t channel) {
    Demultiplexer demultiplexer;
    demultiplexer.Init(OnBoard::MultiplexerLines);
    float voltage = 0.0F;
    if (!demultiplexer.ReadVoltage(channel, voltage)) {
        return 0;
    }
    return TruncateTo<std::int32_t>(voltage * 1000.0F);
}

// 0 for an unknown signal, or for a reading that failed.
std::int32_t ReadSignal(std::uint32_t id) {
    if (id >= FirstConverterId && id < FirstConverterId + ConverterIds) {
        return ReadConverter((id - FirstConverterId) / 2);
    }
    if (id >= FirstMultiplexerId && id < FirstMultiplexerId + MultiplexerIds) {
        return ReadMultiplexer(id - FirstMultiplexerId);
    }
    return 0;
}

// Sleeps out the rest of the interval that began at the time given.
void WaitForNextSample(const TimeSpec& interval, const TimeSpec& began) {
    TimeSpec elapsed;
    elapsed -= began;
    if (!elapsed.IsAboveNanoSeconds(0) || interval < elapsed) {
        return;
    }
    TimeSpec remainder = interval;
    remainder -= elapsed;
    if (remainder.IsAboveNanoSeconds(0)) {
        TimeSpec left;
        TimeSpec::Sleep(&remainder, &left, true);
    }
}

void SetPwm(PwmChannel& channel, std::uint32_t function, StdString value) {
    switch (function) {
        case ENABLE_PWM_FUNCTION:
            if (!channel.Enable(value.ToBool())) {
                ReportError("MeasurementEngine::LIFTPWM - failed to enable/disable PWM", MEASUREMENT_ENGINE);
            }
            break;
        case FREQUENCY_PWM_FUNCTION:
            if (!channel.SetFrequency(value.ToFloat())) {
                ReportError("MeasurementEngine::LIFTPWM - failed to set PWM frequency", MEASUREMENT_ENGINE);
            }
            break;
        default:
            if (!channel.SetDutyCycle(value.ToFloat())) {
                ReportError("MeasurementEngine::LIFTPWM - failed to set PWM duty cycle", MEASUREMENT_ENGINE);
            }
            break;
    }
}

// Null if the chip is missing or has no such channel.
PwmChannel* LiftPwm(std::uint32_t channel) {
    if (channel >= PwmChannel::ChannelCount() || channel >= liftPwmTable.size()) {
        return nullptr;
    }
    PwmChannel*& entry = liftPwmTable.at(channel);
    if (entry == nullptr) {
        entry = new PwmChannel(static_cast<std::uint8_t>(channel), FirstFrequency, FirstDutyCycle);
    }
    return entry;
}

// "0" or "1", empty if the pin could not be written.
StdString WritePin(std::uint32_t id, bool value) {
    if (id / PinsPerBank >= BankCount) {
        return {};
    }
    GpioPin pin({id / PinsPerBank, id % PinsPerBank}, OUTPUT_GPIO_MODE, NO_GPIO_EDGE);
    if (!pin.Write(value ? HIGH_GPIO_LEVEL : LOW_GPIO_LEVEL)) {
        return {};
    }
    return value ? '1' : '0';
}

}  // namespace

bool LIFTAnalogInput(const AdcStatusMessage* request) {
    if (request == nullptr || request->GetSubType() != REQUEST_SUB_TYPE) {
        return false;
    }
    const AdcStatusInfo& wanted = request->GetAdcStatusInfo();
    auto answer = TryMake<AdcStatusMessage>();
    if (answer == nullptr) {
        return false;
    }
    for (std::uint32_t sample = 0; sample < wanted.GetSampleCount(); ++sample) {
        const TimeSpec began;
        const std::int32_t value = ReadSignal(wanted.GetSignalId());
        WaitForNextSample(wanted.GetSampleInterval(), began);
        answer->GetAdcStatusInfo().AddReading(began.GetSeconds(), began.GetNanoSeconds(), value);
    }
    return Answer(std::move(answer));
}

void LIFTDigitalInput(const TestDigitalInputPinsMessage& request) {
    const std::uint32_t bank = request.GetPinId() / PinsPerBank;
    const GpioLevel level =
        bank < BankCount ? MemoryMappedIO::ReadPin({bank, request.GetPinId() % PinsPerBank}) : ERROR_GPIO_LEVEL;
    auto answer = TryMake<TestDigitalInputPinsMessage>();
    if (answer != nullptr) {
        answer->SetValues({static_cast<char>('0' + level)});
    }
    if (!Answer(std::move(answer))) {
        ReportError("MeasurementEngineControl - sending digital input pins message failed", MEASUREMENT_ENGINE);
    }
}

void LIFTDigitalOutput(const TestDigitalOutputPinsMessage& request) {
    StdString text = "Write flag is not set!";
    if (request.GetReadMarker() == 0) {
        text = WritePin(request.GetPinId(), request.GetValue().Left(1) != StdString('0'));
    }
    auto answer = TryMake<TestDigitalOutputPinsMessage>();
    if (answer != nullptr) {
        answer->SetValue(text);
    }
    if (!Answer(std::move(answer))) {
        ReportError("MeasurementEngineControl - sending digital output pins message failed", MEASUREMENT_ENGINE);
    }
}

void LIFTPWM(const TestPWMMessage& request) {
    PwmChannel* channel = LiftPwm(request.GetId() / PwmFunctionCount);
    if (channel != nullptr && !request.GetValue().IsEmpty()) {
        SetPwm(*channel, request.GetId() % PwmFunctionCount, request.GetValue());
    }
    auto answer = TryMake<TestPWMMessage>();
    if (answer != nullptr) {
        answer->SetValue(request.GetValue());
    }
    if (!Answer(std::move(answer))) {
        ReportError("MeasurementEngineControl - sending PWM message failed", MEASUREMENT_ENGINE);
    }
    sleep(1);  // the test link relies on a settled channel at its next request
}
