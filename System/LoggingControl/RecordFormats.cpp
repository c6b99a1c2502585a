#include "System/LoggingControl/RecordFormats.h"

#include <charconv>
#include <string>
#include <string_view>

#include "Frameworks/Utilities/Truncate.h"
#include "Frameworks/Utilities/Version.h"
#include "Frameworks/Xml/XmlDocument.h"

namespace {

// The end of a column line; records do not have this field.
StdString Version() { return "Version (" + GetVersionText() + ")\r\n"; }

constexpr std::size_t DefaultLength = 192;
constexpr std::size_t NumberSize = 32;
constexpr std::size_t XcelWidth = 20;
constexpr int XcelDecimals = 10;

// A line of fields with commas between them.
class Record {
public:
    Record() { m_text.reserve(DefaultLength); }

    Record& Text(std::string_view text) {
        m_text += text;
        m_text += ',';
        return *this;
    }

    Record& Decimal(std::int64_t number) {
        char digits[NumberSize];
        const char* end = std::to_chars(digits, std::end(digits), number).ptr;
        return Text({digits, end});
    }

    Record& Real(double number, const char* format = "") {
        StdString text;
        text.FromDouble(number, format);
        return Text(text.Text());
    }

    // Text and serial day, which is padded with blanks.
    Record& Dates(const TimeInfo& time) {
        Text(time.GetTimeString(0).Text());
        char day[NumberSize];
        const char* end =
            std::to_chars(day, std::end(day), time.GetXcelTime(), std::chars_format::fixed, XcelDecimals).ptr;
        const std::string_view digits(day, end);
        m_text.append(XcelWidth - digits.size(), ' ');
        return Text(digits);
    }

    Record& Seconds(const TimeInfo& time) { return Decimal(time.GetSeconds()).Decimal(time.GetNanoSeconds()); }

    Record& UnsignedSeconds(const TimeInfo& time) {
        return Decimal(static_cast<std::uint32_t>(time.GetSeconds()))
            .Decimal(static_cast<std::uint32_t>(time.GetNanoSeconds()));
    }

    StdString Line() {
        m_text.back() = '\r';  // replaces the comma after the last field
        return std::move(m_text += '\n');
    }

private:
    std::string m_text;
};

}  // namespace

StdString MeasurementColumns() {
    return StdString(
               "Text Date / Time,Xcel Time,Absorbance,Chlorine,Dark Count,Reference Count,Sample Count,"
               "Measurement Index,Seconds,Nano Seconds,") +
           Version();
}

StdString StepColumns() {
    return StdString(
               "Text Date / Time,Xcel Time,Sample,Text Step Description,Step Index,Sample Index,"
               "Motor Angle,Motor Speed,Seconds,Nano Seconds,") +
           Version();
}

StdString StatusColumns() {
    return StdString("Text Date / Time,Xcel Time,Status Message,Seconds,Nano Seconds,") + Version();
}

StdString MeasurementRecord(const MeasurementResults& results) {
    return Record()
        .Dates(results.GetTime())
        .Real(results.GetAbsorbance())
        .Real(results.GetChlorine())
        .Real(results.GetDarkCount())
        .Real(results.GetReferenceCount())
        .Real(results.GetSampleCount())
        .Decimal(results.GetMeasurementIndex())
        .UnsignedSeconds(results.GetTime())
        .Line();
}

StdString StepRecords(const StepResults& results) {
    const StepParameters& step = results.GetStep();
    const StdString description = GetStepDisplayName(step.stepType);
    StdString text;
    std::int32_t index = 0;
    for (const DetectorInformation& sample : results.GetSamples()) {
        text += Record()
                    .Dates(sample.GetTime())
                    .Decimal(TruncateTo<std::int32_t>(sample.GetCount()))
                    .Text(description.Text())
                    .Decimal(step.stepType)
                    .Decimal(index)
                    .Real(step.motorAngle, "%5.1f")
                    .Real(step.motorSpeed, "%3.0f")
                    .Seconds(sample.GetTime())
                    .Line();
        ++index;
    }
    return text;
}

StdString StatusRecord(const MeasurementStatusInfo& status) {
    return Record().Dates(status.GetTime()).Text(status.GetText().Text()).Seconds(status.GetTime()).Line();
}

bool WriteLogInfoXML(const LogInfo& logInfo) {
    XmlDocument* document = logInfo.GetDocument();
    if (document == nullptr || !document->AddElement("LOG_INFO")) {
        return false;
    }
    const bool type = document->SetAttribute("type", "logInfo");
    const bool value = document->SetAttribute("value", logInfo.GetText().CString());
    const bool time = document->SetAttribute("time", logInfo.GetTime().GetTimeString().CString());
    return type && value && time;
}
