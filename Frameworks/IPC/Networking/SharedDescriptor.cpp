#include "Frameworks/IPC/Networking/SharedDescriptor.h"

#include <unistd.h>

#include <utility>

#include "Frameworks/Utilities/Report.h"

OpenDescriptor::~OpenDescriptor() {
    if (close(m_number) == -1) {
        ReportError("Socket::CloseConnection Failure Closing socket", TEST_INTERFACE);
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
