#include "Frameworks/IPC/Networking/CommunicationsCommand.h"

#include <cmath>

namespace {

constexpr std::uint16_t NewCommand = 10001;
constexpr float TenThousandths = 10000.0F;
constexpr float MaxValue = 4294967040.0F;  // below 2^32

// The low 16 bits of the integer part; 0 for no number.
std::uint16_t Truncate(float value) {
    if (!(std::abs(value) <= MaxValue)) {
        return 0;
    }
    return static_cast<std::uint16_t>(static_cast<std::int64_t>(value));
}

}  // namespace

CommunicationsCommand::CommunicationsCommand() { SetCommand(NewCommand); }

CommunicationsCommand& CommunicationsCommand::operator=(const CommunicationsCommand& other) {
    for (const Field& field :
         {SourceAddress, DestinationAddress, Spare, Flags, Command, Length, Whole, Fraction, Seconds, NanoSeconds}) {
        Set(field, other.Get<std::uint32_t>(field));
    }
    return *this;
}

void CommunicationsCommand::CopyAddresses(const CommunicationsCommand& other) {
    for (const Field& field : {SourceAddress, DestinationAddress, Spare}) {
        Set(field, other.Get<std::uint32_t>(field));
    }
}

void CommunicationsCommand::SwapAddresses() {
    const std::uint32_t source = GetSourceAddress();
    SetSourceAddress(GetDestinationAddress());
    SetDestinationAddress(source);
}

float CommunicationsCommand::GetValue() const {
    return static_cast<float>(GetWhole()) + static_cast<float>(GetFraction()) / TenThousandths;
}

void CommunicationsCommand::SetValue(float value) {
    const std::uint16_t whole = Truncate(value);
    Set(Whole, whole);
    Set(Fraction, Truncate((value - static_cast<float>(whole)) * TenThousandths));
}

void CommunicationsCommand::SetTime(const TimeInfo& time) {
    Set(Seconds, static_cast<std::uint32_t>(time.GetSeconds()));
    Set(NanoSeconds, static_cast<std::uint32_t>(time.GetNanoSeconds()));
}
