// Admits one frame at a time from the test link to the test interface's queue: a peer that sends faster than its
// commands are carried out is held up by the network and fills no memory here. The receiver's thread waits until the
// frame before is freed or the receiver is ended.
#pragma once

#include <chrono>
#include <memory>

#include "Frameworks/Threading/Mutex.h"

class FrameGate {
public:
    // Waits until the frame before is freed. The frame is freed with the returned receipt. Null once the gate is
    // closed.
    static std::shared_ptr<void> Pass(const std::shared_ptr<FrameGate>& gate);

    // False if it was cut short because the gate is closed.
    bool Sleep(std::chrono::seconds length);

    void Close();  // for good; wakes the waiting thread
    // Any thread.
    bool IsClosed() const;

private:
    void Release();

    mutable Mutex m_mutex;
    Condition m_changed;
    bool m_isTaken GUARDED_BY(m_mutex) = false;
    bool m_isClosed GUARDED_BY(m_mutex) = false;
};
