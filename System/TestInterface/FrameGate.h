// Lets one frame at a time from the test link into the test interface's queue: a peer that sends faster than its
// commands are worked on is held up by the network and fills no memory here. The receiver's thread waits; whoever frees
// a frame, or ends the receiver, lets it go on.
#pragma once

#include <chrono>
#include <memory>

#include "Frameworks/Threading/Mutex.h"

class FrameGate {
public:
    // Until the frame before has been freed; the receipt stands for the next one. Null once the gate is closed.
    static std::shared_ptr<void> Pass(const std::shared_ptr<FrameGate>& gate);

    // False where it was cut short because the gate is closed.
    bool Sleep(std::chrono::seconds length);

    void Close();  // for good; wakes who waits
    // Any thread.
    bool IsClosed() const;

private:
    void Release();

    mutable Mutex m_mutex;
    Condition m_changed;
    bool m_isTaken GUARDED_BY(m_mutex) = false;
    bool m_isClosed GUARDED_BY(m_mutex) = false;
};
