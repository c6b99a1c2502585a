// The descriptor that a socket and its copies share. A thread holds it open during a call, so that another thread may
// close the socket at any time: the system gets the number back when the last call has returned, and no call ever uses
// a number that belongs to another file. Any thread.
#pragma once

#include <memory>

#include "Frameworks/Threading/Mutex.h"

// An open descriptor, closed by its last owner. A failed close is logged.
class OpenDescriptor {
public:
    explicit OpenDescriptor(int number) : m_number(number) {}
    OpenDescriptor(const OpenDescriptor&) = delete;
    OpenDescriptor& operator=(const OpenDescriptor&) = delete;
    ~OpenDescriptor();

    int Number() const { return m_number; }

private:
    const int m_number;
};

// Keeps the descriptor open; null if it is closed.
using HeldDescriptor = std::shared_ptr<const OpenDescriptor>;

// -1 for none, which every call on a socket refuses.
inline int NumberOf(const HeldDescriptor& descriptor) { return descriptor == nullptr ? -1 : descriptor->Number(); }

class SharedDescriptor {
public:
    explicit SharedDescriptor(int number) : m_descriptor(std::make_shared<const OpenDescriptor>(number)) {}

    HeldDescriptor Hold() const;  // null after Take
    HeldDescriptor Take();        // for the one caller that shuts it down; null for each later call

private:
    mutable Mutex m_mutex;
    HeldDescriptor m_descriptor GUARDED_BY(m_mutex);
};
