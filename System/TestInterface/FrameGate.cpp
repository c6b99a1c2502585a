#include "System/TestInterface/FrameGate.h"

std::shared_ptr<void> FrameGate::Pass(const std::shared_ptr<FrameGate>& gate) {
    std::unique_lock lock(gate->m_mutex);
    gate->m_changed.wait(lock, [&] { return !gate->m_isTaken || gate->m_isClosed; });
    if (gate->m_isClosed) {
        return nullptr;
    }
    gate->m_isTaken = true;
    return {gate.get(), [gate](void* /*gate*/) { gate->Release(); }};
}

bool FrameGate::Sleep(std::chrono::seconds length) {
    std::unique_lock lock(m_mutex);
    return !m_changed.wait_for(lock, length, [this] { return m_isClosed; });
}

void FrameGate::Close() {
    const std::lock_guard lock(m_mutex);
    m_isClosed = true;
    m_changed.notify_all();
}

bool FrameGate::IsClosed() const {
    const std::lock_guard lock(m_mutex);
    return m_isClosed;
}

void FrameGate::Release() {
    const std::lock_guard lock(m_mutex);
    m_isTaken = false;
    m_changed.notify_all();
}
