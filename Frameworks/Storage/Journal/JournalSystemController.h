// The frame of an event store. No thread of its own; one thread at a time.
#pragma once

#include "Frameworks/Storage/Journal/CircularBuffer.h"

class JournalSystemController {
public:
    JournalSystemController() = default;
    explicit JournalSystemController(const CircularBuffer& buffer) : m_buffer(buffer) {}
    JournalSystemController(const JournalSystemController&) = default;
    JournalSystemController& operator=(const JournalSystemController&) = default;
    virtual ~JournalSystemController() = default;

    // Both of the entry at hand.
    TimeInfo GetFirstTime() const { return m_buffer.GetEntry().GetFirstTime(); }
    TimeInfo GetSecondTime() const { return m_buffer.GetEntry().GetSecondTime(); }

private:
    CircularBuffer m_buffer;
};
