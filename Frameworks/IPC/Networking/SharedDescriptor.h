// The descriptor that a socket and its copies have in common. A thread holds it open for the length of a call, so that
// another may close the socket at any time: the number goes back to the system only when the last call has returned,
// and nobody ever writes to, or closes, a number that has been given out anew. Any thread.
#pragma once

#include <memory>

#include "Frameworks/Threading/Mutex.h"

// An open descriptor, closed by whoever lets go of it last. A close that fails is logged.
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

// Keeps the descriptor open; null where it is closed.
using HeldDescriptor = std::shared_ptr<const OpenDescriptor>;

// -1 for none, which every call on a socket refuses.
inline int NumberOf(const HeldDescriptor& descriptor) { return descriptor == nullptr ? -1 : descriptor->Number(); }

class SharedDescriptor {
public:
    explicit SharedDescriptor(int number) : m_descriptor(std::make_shared<const OpenDescriptor>(number)) {}

    HeldDescriptor Hold() const;  // null once it is taken
    HeldDescriptor Take();        // the first caller gets it, to shut it down and let go of it; nobody gets it again

private:
    mutable Mutex m_mutex;
    HeldDescriptor m_descriptor GUARDED_BY(m_mutex);
};
