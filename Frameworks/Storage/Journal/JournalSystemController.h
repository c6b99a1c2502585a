// The frame of an event store. It starts no thread; one thread at a time.
#pragma once

#include "Frameworks/Storage/Journal/CircularBuffer.h"

class JournalSystemController {
public:
    JournalSystemController() = default;
    explicit JournalSystemController(const CircularBuffer& buffer) : m_buffer(buffer) {}
    JournalSystemController(const JournalSystemController&) = default;
    JournalSystemController& operator=(const JournalSystemController&) = default;
    virtual ~JournalSystemController() = default;

    // Of the current entry.
    TimeInfo GetFirstTime() const { return m_buffer.GetEntry().GetFirstTime(); }
    TimeInfo GetSecondTime() const { return m_buffer.GetEntry().GetSecondTime(); }

private:
    CircularBuffer m_buffer;
};
