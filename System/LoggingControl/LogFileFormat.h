// The file format of one kind of record, as the settings name it. Only CSV writes a file. XML is accepted and writes
// nothing; the other formats are logged as invalid with each record.
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

// Leaves the format unchanged unless the text equals a name, including its case.
void SetLogFileFormat(LogFileFormat& format, const StdString& name);
