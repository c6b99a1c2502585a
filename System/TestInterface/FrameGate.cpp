#include "System/TestInterface/FrameGate.h"

std::shared_ptr<void> FrameGate::Pass(const std::shared_ptr<FrameGate>& gate) {
    const MutexLock lock(gate->m_mutex);
    while (gate->m_isTaken && !gate->m_isClosed) {
        gate->m_changed.Wait(gate->m_mutex);
    }
    if (gate->m_isClosed) {
        return nullptr;
    }
    gate->m_isTaken = true;
    return {gate.get(), [gate](void* /*gate*/) { gate->Release(); }};
}

bool FrameGate::Sleep(std::chrono::seconds length) {
    const MutexLock lock(m_mutex);
    const auto deadline = std::chrono::steady_clock::now() + length;
    while (!m_isClosed && m_changed.WaitUntil(m_mutex, deadline)) {
    }
    return !m_isClosed;
}

void FrameGate::Close() {
    const MutexLock lock(m_mutex);
    m_isClosed = true;
    m_changed.NotifyAll();
}

bool FrameGate::IsClosed() const {
    const MutexLock lock(m_mutex);
    return m_isClosed;
}

void FrameGate::Release() {
    const MutexLock lock(m_mutex);
    m_isTaken = false;
    m_changed.NotifyAll();
}
