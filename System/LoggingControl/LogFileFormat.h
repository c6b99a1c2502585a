// How the records of one kind are to be written, as the settings name it. Only CSV writes a file: XML is accepted and
// writes nothing, the others are reported with each record.
#pragma once

#include <cstdint>

#include "Frameworks/Utilities/StdString.h"

enum LogFileFormat : std::int32_t {
    NO_LOG_FILE_FORMAT = -1,
    CSV_LOG_FILE_FORMAT = 0,
    XML_LOG_FILE_FORMAT = 1,
    BINARY_LOG_FILE_FORMAT = 2,
    TEXT_LOG_FILE_FORMAT = 3,
};

// A text that is none of the names, in their very case, leaves the format as it was.
void SetLogFileFormat(LogFileFormat& format, const StdString& name);
