// The answer to a command of the test link while it is composed: its header and payload, the header of the request, and
// the connection to answer on. One thread at a time.
#pragma once

#include "Frameworks/IPC/Networking/TCPClient.h"
#include "System/Messages/AdcStatusInfo.h"
#include "System/Messages/MeasurementMessage.h"

class CommandResponse : public CommunicationsCommand, public PayloadContainer {
public:
    // An empty answer to that request.
    void SetRequest(const CommunicationsCommand& request);
    const CommunicationsCommand& GetRequest() const { return m_request; }
    CommunicationsCommand& GetRequest() { return m_request; }
    double GetRequestValue() const { return m_requestValue; }  // stored only

    void SetClient(const TCPClient& client) { m_client = client; }  // the copy shares the connection

    // How many the request asked for, at least one. The count passes 0, so that a measurement after the last answer,
    // which a sequence's timer starts, causes no further answer.
    void DecrementAnswers() { --m_answers; }
    bool HasAnswersToGo() const { return m_answers != 0; }
    std::uint32_t GetAnswersToGo() const { return m_answers; }

    // The present time, then 12 bytes a reading: seconds, nanoseconds, value.
    void AppendReadings(const std::vector<AdcReading>& readings);
    // The time of the result and its chlorine value as a double. Other messages than measurements are left out.
    void AppendMeasurement(const DataMessage& message);

    // Sends header and payload and logs the outcome; does nothing if the client is not connected. The header repeats
    // nothing of the request: replies are matched to requests by their order.
    void SendResponse();

private:
    CommunicationsCommand m_request;
    TCPClient m_client;
    std::uint32_t m_answers = 0;
    double m_requestValue = 0.0;
};
