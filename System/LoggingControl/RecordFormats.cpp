#include "System/LoggingControl/RecordFormats.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Frameworks/Utilities/Version.h"
#include "Frameworks/Xml/XmlDocument.h"

namespace {

// The end of a column line; records have one field fewer.
StdString Version() { return "Version (" + GetVersionText() + ")\r\n"; }

StdString Decimal(std::int32_t number) {
    StdString text;
    text.FromInteger(number);
    return text;
}

StdString UnsignedDecimal(std::uint32_t number) {
    StdString text;
    text.Format("%u", number);
    return text;
}

StdString Real(double number, const char* format = "%f") {
    StdString text;
    text.FromDouble(number, format);
    return text;
}

// Toward zero; what a 32-bit number can't hold becomes its nearest, and no number 0.
StdString Truncated(double number) {
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    return Decimal(std::isnan(number) ? 0 : static_cast<std::int32_t>(std::clamp<double>(number, lowest, highest)));
}

StdString Dates(const TimeInfo& time) { return time.GetTimeString(0) + "," + Real(time.GetXcelTime(), "%20.10f"); }

StdString Seconds(const TimeInfo& time) { return Decimal(time.GetSeconds()) + "," + Decimal(time.GetNanoSeconds()); }

StdString UnsignedSeconds(const TimeInfo& time) {
    return UnsignedDecimal(static_cast<std::uint32_t>(time.GetSeconds())) + "," +
           UnsignedDecimal(static_cast<std::uint32_t>(time.GetNanoSeconds()));
}

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
    return Dates(results.GetTime()) + "," +                        //
           Real(results.GetAbsorbance()) + "," +                   //
           Real(results.GetChlorine()) + "," +                     //
           Real(results.GetDarkCount()) + "," +                    //
           Real(results.GetReferenceCount()) + "," +               //
           Real(results.GetSampleCount()) + "," +                  //
           UnsignedDecimal(results.GetMeasurementIndex()) + "," +  //
           UnsignedSeconds(results.GetTime()) + "\r\n";
}

StdString StepRecords(const StepResults& results) {
    const StepParameters& step = results.GetStep();
    const StdString description = GetStepDisplayName(step.stepType);
    const StdString motor = Real(step.motorAngle, "%5.1f") + "," + Real(step.motorSpeed, "%3.0f");
    StdString text;
    std::int32_t index = 0;
    for (const DetectorInformation& sample : results.GetSamples()) {
        text += Dates(sample.GetTime()) + "," + Truncated(sample.GetCount()) + "," + description + "," +
                Decimal(step.stepType) + "," + Decimal(index) + "," + motor + "," + Seconds(sample.GetTime()) + "\r\n";
        ++index;
    }
    return text;
}

StdString StatusRecord(const MeasurementStatusInfo& status) {
    return Dates(status.GetTime()) + "," + status.GetText() + "," + Seconds(status.GetTime()) + "\r\n";
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
