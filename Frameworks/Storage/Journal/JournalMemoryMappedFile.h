// The mapped file that the journal would lie in. One thread at a time.
#pragma once

#include "Frameworks/Storage/MemoryMappedFile.h"

class JournalMemoryMappedFile : public MemoryMappedFile {
public:
    JournalMemoryMappedFile() = default;
    JournalMemoryMappedFile(const JournalMemoryMappedFile&) = default;
    JournalMemoryMappedFile& operator=(const JournalMemoryMappedFile&) = default;
    ~JournalMemoryMappedFile() override = default;
};
