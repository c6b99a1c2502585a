#include "System/LoggingControl/LoggingControl.h"

#include <syslog.h>

#include "Frameworks/Configuration/SingletonBase.h"
#include "Frameworks/Messaging/MeasurementStatusMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "System/LoggingControl/RecordFormats.h"
#include "System/LoggingControl/SystemLogFormat.h"
#include "System/Messages/MeasurementMessage.h"
#include "System/Messages/MeasurementStepDataMessage.h"

namespace {

constexpr char Identity[] = "Vernicor";
constexpr int Options = LOG_PID | LOG_CONS | LOG_NDELAY | LOG_PERROR;
constexpr int AllPriorities = 255;

// The level is passed on as the priority: level 8, which syslog does not know, means facility user and priority 0.
void WriteSystemLog(int priority, const StdString& line) {
    const StdString format = SystemLogFormat(line);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    syslog(priority, format.CString());
#pragma GCC diagnostic pop
}

}  // namespace

struct LoggingControl::KindTexts {
    StdString (*columns)();
    const char* invalidFormat;
    const char* columnsFailed;
    const char* recordFailed;
    const char* problem;
};

const LoggingControl::KindTexts LoggingControl::Texts[KindCount] = {
    {MeasurementColumns,
     "LoggingControl::WriteMeasurementData :: Invalid Measurement Data Log format NO data will be logged",
     "LoggingControl::WriteMeasurementData :: Problem writing column information data to CSV file",
     "LoggingControl::WriteMeasurementData :: Problem writing data to CSV file",
     "LoggingControl::ProcessDataMessage :: Problem writting measurement data to file"},
    {StepColumns,  //
     "LoggingControl::WriteStepData :: Invalid Step Data Log format NO data will be logged",
     "LoggingControl::WriteStepData :: Problem writing column information data to CSV file",
     "",  // this kind logs an empty line
     "LoggingControl::ProcessDataMessage :: Problem writting step data to file"},
    {StatusColumns,  //
     "LoggingControl::WriteStatusData :: Invalid Status Data Log format NO data will be logged",
     "LoggingControl::WriteStatusData :: Problem writing column information data to CSV file",
     "LoggingControl::WriteStatusData :: Problem writing data to CSV file",
     "LoggingControl::ProcessDataMessage :: Problem writting status data to file"},
};

LoggingControl::LoggingControl() { StartAs(ControllerNames[LOGGING_CONTROL]); }

bool LoggingControl::Init() {
    openlog(Identity, Options, LOG_USER);
    setlogmask(AllPriorities);
    if (!InitController()) {
        return false;
    }
    DoRegistration();
    if (!ReadConfiguration()) {
        return false;
    }
    m_card.SetMountPath(m_dataFilePath);
    return true;
}

bool LoggingControl::DoRegistration() {
    RegisterForDataMessage(MEASUREMENT_DATA_MESSAGE);
    RegisterForDataMessage(MEASUREMENT_STEP_DATA_MESSAGE);
    RegisterForDataMessage(MEASUREMENT_STATUS_MESSAGE);
    RegisterForDataMessage(LOGGING_DATA_MESSAGE);
    RegisterForDataMessage(DEVICE_ERROR_DATA_MESSAGE);
    RegisterForDataMessage(SYSTEM_ERROR_DATA_MESSAGE);
    RegisterForDataMessage(WATCHDOG_ERROR_DATA_MESSAGE);
    return true;
}

bool LoggingControl::ReadConfiguration() {
    const SystemConfigurationFile* file = SingletonBase::GetSystemConfiguration();
    const ConfigurationBase* section = file == nullptr ? nullptr : file->GetLoggingConfigInfo();
    if (section == nullptr) {
        return false;
    }
    const StdString level = section->RequireValue("LoggingLevel");
    for (std::int32_t number = 0; number < LogLevelCount; ++number) {
        if (level == LogLevelNames[number]) {
            MessageController::SetLogLevel(number);
        }
    }
    DataLog& measurements = m_logs[MEASUREMENT_KIND];
    DataLog& steps = m_logs[STEP_KIND];
    DataLog& status = m_logs[STATUS_KIND];
    measurements.enabled = section->RequireValue("LogMeasurementData").ToBool();
    SetLogFileFormat(measurements.format, section->RequireValue("LogMeasurementDataFileFormat"));
    steps.enabled = section->RequireValue("LogMeasurementStepData").ToBool();
    SetLogFileFormat(steps.format, section->RequireValue("LogMeasurementStepDataFileFormat"));
    status.enabled = section->RequireValue("LogStatusData").ToBool();
    SetLogFileFormat(status.format, section->RequireValue("LogStatusDataFileFormat"));
    m_dataFilePath = section->RequireValue("LogDataFilePath");
    measurements.fileName = section->RequireValue("LogMeasurementDataFileName");
    steps.fileName = section->RequireValue("LogMeasurementStepDataFileName");
    status.fileName = section->RequireValue("LogStatusDataFileName");
    return true;
}

bool LoggingControl::ProcessDataMessage(DataMessage* message) {
    if (message == nullptr) {
        return false;
    }
    switch (message->GetDataType()) {
        case DEVICE_ERROR_DATA_MESSAGE:
            ++m_deviceErrorCount;
            break;
        case SYSTEM_ERROR_DATA_MESSAGE:
            ++m_systemErrorCount;
            break;
        case WATCHDOG_ERROR_DATA_MESSAGE:
            ++m_watchdogCount;
            break;
        case LOGGING_DATA_MESSAGE:
            ++m_logMessageCount;
            WriteLine(static_cast<const LogInfoMessage&>(*message));
            break;
        case MEASUREMENT_DATA_MESSAGE: {
            ++m_measurementCount;
            const auto& results = static_cast<const MeasurementMessage&>(*message).GetMeasurementResults();
            WriteData(MEASUREMENT_KIND, [&results] { return MeasurementRecord(results); });
            break;
        }
        case MEASUREMENT_STEP_DATA_MESSAGE: {
            ++m_stepCount;
            const auto* results = static_cast<const MeasurementStepDataMessage&>(*message).GetStepResults();
            WriteData(STEP_KIND, [results] { return results == nullptr ? StdString() : StepRecords(*results); });
            break;
        }
        case MEASUREMENT_STATUS_MESSAGE: {
            ++m_measurementCount;
            const auto& status = static_cast<const MeasurementStatusMessage&>(*message).GetStatusInfo();
            WriteSystemLog(DEBUG_LOG_LEVEL, status.GetLine());
            WriteData(STATUS_KIND, [&status] { return StatusRecord(status); });
            break;
        }
        default:
            break;
    }
    return true;
}

void LoggingControl::WriteLine(const LogInfoMessage& message) {
    const LogInfo& info = message.GetLogInfo();
    if (info.GetLogLevel() < EMERGENCY_LOG_LEVEL || info.GetLogLevel() > RUMOR_LOG_LEVEL) {
        const StdString sender = message.GetSource() == nullptr ? StdString() : message.GetSource()->GetThreadName();
        Log("Invalid Log Message Type from - " + sender, DEBUG_LOG_LEVEL);
        return;
    }
    WriteSystemLog(info.GetLogLevel(), info.GetLine());
}

void LoggingControl::WriteData(Kind kind, const RecordFunction& record) {
    if (!WriteRecord(kind, record)) {
        Log(Texts[kind].problem, ERROR_LOG_LEVEL);
    }
}

bool LoggingControl::WriteRecord(Kind kind, const RecordFunction& record) {
    const DataLog& log = m_logs[kind];
    if (!log.enabled) {
        return true;
    }
    switch (log.format) {
        case CSV_LOG_FILE_FORMAT:
            return AppendRecord(kind, record);
        case XML_LOG_FILE_FORMAT:
            m_xmlPending = 0;
            return true;
        default:
            Log(Texts[kind].invalidFormat, ERROR_LOG_LEVEL);
            return false;
    }
}

bool LoggingControl::AppendRecord(Kind kind, const RecordFunction& record) {
    DataLog& log = m_logs[kind];
    RollOver(log);
    if (!log.file.IsOpen()) {
        return false;
    }
    if (log.file.IsEmpty() && !log.file.Write(Texts[kind].columns())) {
        Log(Texts[kind].columnsFailed, ERROR_LOG_LEVEL);
    }
    if (!log.file.Write(record())) {
        Log(Texts[kind].recordFailed, ERROR_LOG_LEVEL);
        return false;
    }
    log.file.Flush();
    return true;
}

void LoggingControl::RollOver(DataLog& log) {
    TimeInfo now;
    now.SetFormat("%d");
    if (log.file.IsOpen() && log.file.GetDay() == now.GetTimeString()) {
        return;
    }
    log.file.Close();
    log.file.SetCard(&m_card);
    log.file.SetFile(log.fileName);
    log.file.Open();
}
