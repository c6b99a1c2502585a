// The history of results as a file of twelve-byte records: checksum, seconds and value, in the machine's byte order. A
// reader drops the checksum and computes a new one, so only the value shows that a record is damaged. Every operation
// returns its result and keeps it as the status. One thread at a time.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>

#include "Frameworks/Storage/MeasurementHistory.h"
#include "Frameworks/Utilities/StdString.h"

class MeasurementBinaryFile {
public:
    explicit MeasurementBinaryFile(bool isForWriting);  // without a name, so not open
    MeasurementBinaryFile(const char* fileName, std::ios::openmode mode, bool isForWriting);
    MeasurementBinaryFile(const StdString& fileName, std::ios::openmode mode, bool isForWriting);
    MeasurementBinaryFile(const MeasurementBinaryFile&) = delete;
    MeasurementBinaryFile& operator=(const MeasurementBinaryFile&) = delete;
    virtual ~MeasurementBinaryFile() = default;

    // Closes an open file first. `isForWriting` alone decides between writing and reading. A file for writing begins
    // empty, unless the mode appends.
    bool Open(const StdString& fileName, std::ios::openmode mode, bool isForWriting);
    bool Open(bool isForWriting);  // the same file again

    virtual bool Close();  // false if no file was open

    bool Read(void* buffer, std::uint32_t count);  // false if fewer bytes are left
    // True for any bytes; does not check whether the file took them.
    virtual bool Write(const void* buffer, std::int32_t count);

    // Adds the point to the history and to the file. The file gets the checksum in the point, the history the computed
    // one.
    virtual bool WriteDataPoint(const MeasurementDataPoint& point);

    // Reads the whole file and keeps the last 3000 records; the read position stays. An incomplete last record ends the
    // reading and the stream stays failed until the next Open. The status is false for that and for an empty file.
    const MeasurementHistory& ReadHistory();
    // Appends all points with the computed checksums. Returns false if nothing was written.
    bool WriteHistory(const MeasurementHistory& history);

    // Bytes; 0 if no file is open, -1 for a failed stream. The read position stays.
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
