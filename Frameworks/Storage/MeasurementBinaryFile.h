// The history of results as a file: records of twelve bytes, checksum, seconds and value, in the machine's byte order,
// with nothing around them. A reader drops the checksum and computes its own, so a damaged record shows by its value
// alone. Every operation gives its result and keeps it as the status. One thread at a time.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>

#include "Frameworks/Storage/MeasurementHistory.h"
#include "Frameworks/Utilities/StdString.h"

class MeasurementBinaryFile {
public:
    explicit MeasurementBinaryFile(bool isForWriting);  // no name yet, and so not open
    MeasurementBinaryFile(const char* fileName, std::ios::openmode mode, bool isForWriting);
    MeasurementBinaryFile(const StdString& fileName, std::ios::openmode mode, bool isForWriting);
    MeasurementBinaryFile(const MeasurementBinaryFile&) = delete;
    MeasurementBinaryFile& operator=(const MeasurementBinaryFile&) = delete;
    virtual ~MeasurementBinaryFile() = default;

    // Closes what is open. The file is for writing or for reading alone, whatever the mode says of the two. A file for
    // writing begins empty, unless the mode appends.
    bool Open(const StdString& fileName, std::ios::openmode mode, bool isForWriting);
    bool Open(bool isForWriting);  // the same file once more

    virtual bool Close();  // false where nothing was open

    bool Read(void* buffer, std::uint32_t count);  // false where fewer bytes are left
    // True for any bytes at all: whether the file took them is not looked at.
    virtual bool Write(const void* buffer, std::int32_t count);

    // Adds the point to the history and to the file. The file gets the checksum that the caller put into the point, the
    // history the computed one.
    virtual bool WriteDataPoint(const MeasurementDataPoint& point);

    // The whole file, of which the last 3000 records stay; the read position is kept. A last record that was cut ends
    // the reading, and the stream stays failed until the next Open. The status is false for that and for an empty file.
    const MeasurementHistory& ReadHistory();
    // Appends all of it, with the computed checksums. False where nothing was written.
    bool WriteHistory(const MeasurementHistory& history);

    // Bytes; 0 where no file is open, -1 on a failed stream. The read position is kept.
    std::streampos EndPosition();

    bool GetStatus() const { return m_status; }  // of the last operation

private:
    bool ReadRecord();
    bool WriteRecord();

    MeasurementDataPoint m_point;
    MeasurementHistory m_history;
    std::fstream m_stream;
    std::string m_fileName;
    bool m_status = false;
};
