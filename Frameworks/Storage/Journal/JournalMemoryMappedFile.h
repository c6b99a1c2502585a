// The mapped file of the journal. One thread at a time.
#pragma once

#include "Frameworks/Storage/MemoryMappedFile.h"

class JournalMemoryMappedFile : public MemoryMappedFile {
public:
    JournalMemoryMappedFile() = default;
    JournalMemoryMappedFile(const JournalMemoryMappedFile&) = default;
    JournalMemoryMappedFile& operator=(const JournalMemoryMappedFile&) = default;
    ~JournalMemoryMappedFile() override = default;
};
