#include "System/TestInterface/CommandResponse.h"

#include <bit>

#include "Frameworks/Messaging/MessageController.h"

void CommandResponse::SetRequest(const CommunicationsCommand& request) {
    CommunicationsCommand::Clear();
    PayloadContainer::Reset();
    m_request = request;
    m_answers = request.GetLength() == 0 ? 1 : request.GetLength();
    m_requestValue = request.GetValue();
}

void CommandResponse::AppendReadings(const std::vector<AdcReading>& readings) {
    std::vector<std::uint8_t> bytes;
    for (const AdcReading& reading : readings) {
        for (const std::int32_t number : {reading.seconds, reading.nanoSeconds, reading.value}) {
            bytes.resize(bytes.size() + 4);
            PutLittleEndian(&bytes[bytes.size() - 4], 4, static_cast<std::uint32_t>(number));
        }
    }
    AppendBytes(bytes);
}

void CommandResponse::AppendMeasurement(const DataMessage& message) {
    if (message.GetDataType() != MEASUREMENT_DATA_MESSAGE) {
        return;
    }
    const MeasurementResults& results = static_cast<const MeasurementMessage&>(message).GetMeasurementResults();
    AppendTimeStamp(results.GetTime());
    AppendNumber(std::bit_cast<std::uint64_t>(results.GetChlorine()), sizeof(std::uint64_t));
}

void CommandResponse::SendResponse() {
    if (!m_client.IsConnected()) {
        return;
    }
    SwapAddresses();
    CommunicationsCommand::SetLength(static_cast<std::uint32_t>(PayloadContainer::GetLength() + CRCSize));
    SetValue(0.0F);
    SetFlags(GetFlags() & static_cast<std::uint16_t>(~WriteFlag));
    SetTime(TimeInfo());
    if (m_client.Send(this, this)) {
        MessageController::LogMessage("CommandResponse::SendResponse  Sent information to Server",
                                      INFORMATIONAL_LOG_LEVEL, TEST_INTERFACE);
    } else {
        MessageController::LogMessage("CommandResponse::SendResponse  Unable to send information to Server",
                                      ERROR_LOG_LEVEL, TEST_INTERFACE);
    }
}
