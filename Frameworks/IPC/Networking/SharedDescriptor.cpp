#include "Frameworks/IPC/Networking/SharedDescriptor.h"

#include <unistd.h>

#include <utility>

#include "Frameworks/IPC/Networking/NetworkLog.h"

OpenDescriptor::~OpenDescriptor() {
    if (close(m_number) == -1) {
        LogNetworkError("Socket::CloseConnection Failure Closing socket");
    }
}

HeldDescriptor SharedDescriptor::Hold() const {
    const MutexLock lock(m_mutex);
    return m_descriptor;
}

HeldDescriptor SharedDescriptor::Take() {
    const MutexLock lock(m_mutex);
    return std::exchange(m_descriptor, nullptr);
}
