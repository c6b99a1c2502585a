#include "System/LoggingControl/LogFileFormat.h"

namespace {

constexpr struct {
    LogFileFormat format;
    const char* name;
} Formats[] = {
    {CSV_LOG_FILE_FORMAT, "CSV"},
    {XML_LOG_FILE_FORMAT, "XML"},
    {BINARY_LOG_FILE_FORMAT, "BINARY"},
    {TEXT_LOG_FILE_FORMAT, "TEXT"},
};

}  // namespace

void SetLogFileFormat(LogFileFormat& format, const StdString& name) {
    for (const auto& known : Formats) {
        if (name == known.name) {
            format = known.format;
        }
    }
}
