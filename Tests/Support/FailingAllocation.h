// Makes one allocation with std::nothrow fail, until this is destroyed.
#pragma once

#include <cstddef>

class FailingAllocation {
public:
    explicit FailingAllocation(int n);  // the Nth such allocation of this thread; 1: the next
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    // The next such allocation of that many bytes, on whichever thread.
    static void FailSize(std::size_t size);
};
