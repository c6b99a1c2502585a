// The most heap that the program holds at once while this object lives, beyond what it held before. Every block counts
// with its allocator overhead, whichever code requests it: the program's malloc replaces libc's.
#pragma once

#include <cstddef>

class HeapPeak {
public:
    HeapPeak();
    HeapPeak(const HeapPeak&) = delete;
    HeapPeak& operator=(const HeapPeak&) = delete;
    ~HeapPeak();

    std::size_t Bytes() const;
};
