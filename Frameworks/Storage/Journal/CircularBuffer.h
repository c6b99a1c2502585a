// The parts of a circular journal: the current entry, the mapped file, and its export. One thread at a time.
#pragma once

#include "Frameworks/Storage/Journal/JournalEntry.h"
#include "Frameworks/Storage/Journal/JournalExportFile.h"
#include "Frameworks/Storage/Journal/JournalMemoryMappedFile.h"

class CircularBuffer {
public:
    CircularBuffer() = default;
    explicit CircularBuffer(const JournalEntry& entry) : m_entry(entry) {}
    CircularBuffer(const CircularBuffer&) = default;
    CircularBuffer& operator=(const CircularBuffer&) = default;
    virtual ~CircularBuffer() = default;

    const JournalExportFile& GetExportFile() const { return m_exportFile; }
    const JournalMemoryMappedFile& GetMappedFile() const { return m_mappedFile; }
    const JournalEntry& GetEntry() const { return m_entry; }

private:
    JournalExportFile m_exportFile;
    JournalMemoryMappedFile m_mappedFile;
    JournalEntry m_entry;
};
