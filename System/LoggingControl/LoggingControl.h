// The controller that alone writes the system log and the three data files on the SD card: measurements, steps and
// status lines, one file per day for each. Other threads use messages only; private members belong to its own thread.
#pragma once

#include <functional>

#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/ThreadControl.h"
#include "Frameworks/Storage/SDCard.h"
#include "Frameworks/Storage/SDCardFile.h"
#include "System/LoggingControl/LogFileFormat.h"

class LoggingControl final : public ThreadControl {
public:
    LoggingControl();  // starts the thread

    bool Init() override;
    bool DoRegistration() override;  // always true
    bool ProcessDataMessage(DataMessage* message) override;

private:
    enum Kind { MEASUREMENT_KIND, STEP_KIND, STATUS_KIND, KindCount };
    using RecordFunction = std::function<StdString()>;
    struct KindTexts;

    // The settings and the file of one kind of record.
    struct DataLog {
        bool enabled = false;
        LogFileFormat format = NO_LOG_FILE_FORMAT;  // reported as invalid until the settings give one
        SDCardFile file;
        StdString fileName;
    };

    static const KindTexts Texts[KindCount];

    bool ReadConfiguration();
    void WriteLine(const LogInfoMessage& message);
    void WriteData(Kind kind, const RecordFunction& record);
    bool WriteRecord(Kind kind, const RecordFunction& record);
    bool AppendRecord(Kind kind, const RecordFunction& record);
    void RollOver(DataLog& log);

    std::uint32_t m_deviceErrorCount = 0;
    std::uint32_t m_logMessageCount = 0;
    std::uint32_t m_measurementCount = 0;  // status messages are counted here too
    std::uint32_t m_stepCount = 0;
    std::uint32_t m_systemErrorCount = 0;
    std::uint32_t m_watchdogCount = 0;
    SDCard m_card;  // before the files, so that they are closed before it is unmounted
    StdString m_dataFilePath;
    DataLog m_logs[KindCount];
    std::int32_t m_xmlPending = 0;
};
