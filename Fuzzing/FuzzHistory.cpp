// Reads random bytes as a history of results: each whole record is read, with a computed checksum, an incomplete one is
// not, and a written history reads back unchanged.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "Frameworks/Storage/MeasurementBinaryFile.h"
#include "Frameworks/Utilities/CRC32.h"
#include "Fuzzing/MemoryFile.h"

namespace {

constexpr std::size_t RecordSize = 12;
constexpr std::size_t SumSize = 4;

// The records as they are written: each begins with the checksum of its other eight bytes.
std::string WithSums(const std::uint8_t* data, std::size_t size) {
    static const CRC32 crc;
    std::string records(reinterpret_cast<const char*>(data), size - size % RecordSize);
    for (std::size_t at = 0; at < records.size(); at += RecordSize) {
        const std::uint32_t sum = crc.Compute(data + at + SumSize, RecordSize - SumSize);
        std::memcpy(records.data() + at, &sum, sizeof(sum));
    }
    return records;
}

std::string Written(const MeasurementHistory& history) {
    const MemoryFile file;
    MeasurementBinaryFile writer(file.Path(), std::ios::out, true);
    Require(writer.WriteHistory(history) == (history.Size() > 0), "a history is written if there is one");
    Require(writer.Close(), "what was open is closed");
    return file.Read((history.Size() + 1) * RecordSize);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const MemoryFile file;
    file.Write(data, size);
    MeasurementBinaryFile reader(file.Path(), std::ios::in, false);
    Require(reader.EndPosition() == std::streampos(static_cast<std::streamoff>(size)), "the end is the size");
    const MeasurementHistory& history = reader.ReadHistory();
    Require(reader.GetStatus() == (size > 0 && size % RecordSize == 0), "the status is false for a cut or empty file");
    Require(history.Size() == size / RecordSize, "each whole record is read");
    Require(Written(history) == WithSums(data, size), "what was read is what is written");
    return 0;
}
