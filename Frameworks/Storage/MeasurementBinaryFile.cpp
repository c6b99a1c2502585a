#include "Frameworks/Storage/MeasurementBinaryFile.h"

MeasurementBinaryFile::MeasurementBinaryFile(bool isForWriting) { Open(isForWriting); }

MeasurementBinaryFile::MeasurementBinaryFile(const char* fileName, std::ios::openmode mode, bool isForWriting)
    : MeasurementBinaryFile(StdString(fileName), mode, isForWriting) {}

MeasurementBinaryFile::MeasurementBinaryFile(const StdString& fileName, std::ios::openmode mode, bool isForWriting) {
    Open(fileName, mode, isForWriting);
}

bool MeasurementBinaryFile::Open(const StdString& fileName, std::ios::openmode mode, bool isForWriting) {
    m_status = false;
    if (m_stream.is_open()) {
        m_stream.close();
    }
    m_fileName = fileName.Text();
    const std::ios::openmode wanted = isForWriting ? std::ios::out : std::ios::in;
    const std::ios::openmode unwanted = isForWriting ? std::ios::in : std::ios::out;
    m_stream.open(m_fileName, (mode & ~unwanted) | wanted | std::ios::binary);
    m_status = m_stream.is_open();
    return m_status;
}

bool MeasurementBinaryFile::Open(bool isForWriting) {
    return Open(StdString(m_fileName), std::ios::binary | std::ios::in, isForWriting);
}

bool MeasurementBinaryFile::Close() {
    m_status = m_stream.is_open();
    if (m_status) {
        m_stream.close();
    }
    return m_status;
}

bool MeasurementBinaryFile::Read(void* buffer, std::uint32_t count) {
    m_status = false;
    if (buffer == nullptr || count == 0) {
        return false;
    }
    m_stream.read(static_cast<char*>(buffer), static_cast<std::streamsize>(count));
    m_status = m_stream.good();
    return m_status;
}

bool MeasurementBinaryFile::Write(const void* buffer, std::int32_t count) {
    m_status = buffer != nullptr && count > 0;
    if (m_status) {
        m_stream.write(static_cast<const char*>(buffer), count);
    }
    return m_status;
}

bool MeasurementBinaryFile::WriteDataPoint(const MeasurementDataPoint& point) {
    m_status = false;
    if (!m_stream.is_open()) {
        return false;
    }
    m_point = point;
    m_status = m_history.Add(m_point) && WriteRecord();
    m_stream.flush();
    return m_status;
}

bool MeasurementBinaryFile::WriteRecord() {
    const std::uint32_t crc = m_point.GetCRC();
    const std::uint32_t seconds = m_point.GetSeconds();
    const float measurement = m_point.GetMeasurement();
    return Write(&crc, sizeof(crc)) && Write(&seconds, sizeof(seconds)) && Write(&measurement, sizeof(measurement));
}

const MeasurementHistory& MeasurementBinaryFile::ReadHistory() {
    m_status = false;
    if (!m_stream.is_open()) {
        return m_history;
    }
    const std::streampos position = m_stream.tellg();
    m_stream.seekg(0, std::ios::beg);
    m_history.Clear();
    if (m_history.Size() != 0) {
        return m_history;
    }
    do {
        m_status = ReadRecord();
    } while (std::streamoff(m_stream.tellg()) < std::streamoff(EndPosition()));
    m_stream.seekg(position);
    return m_history;
}

bool MeasurementBinaryFile::ReadRecord() {
    std::uint32_t crc = 0;
    std::uint32_t seconds = 0;
    float measurement = 0.0F;
    return Read(&crc, sizeof(crc)) && Read(&seconds, sizeof(seconds)) && Read(&measurement, sizeof(measurement)) &&
           m_history.Add(seconds, measurement);
}

bool MeasurementBinaryFile::WriteHistory(const MeasurementHistory& history) {
    m_status = false;
    if (!m_stream.is_open()) {
        return false;
    }
    for (std::size_t index = 0; index < history.Size(); ++index) {
        history.Get(index, m_point);
        m_status = WriteRecord();
    }
    return m_status;
}

std::streampos MeasurementBinaryFile::EndPosition() {
    if (!m_stream.is_open()) {
        return {0};
    }
    const std::streampos position = m_stream.tellg();
    m_stream.seekg(0, std::ios::end);
    const std::streampos end = m_stream.tellg();
    m_stream.seekg(position);
    return end;
}
