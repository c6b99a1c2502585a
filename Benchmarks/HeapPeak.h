// The most heap that the program holds at once while this object lives, beyond what it held before. Every block counts
// with all that the allocator sets aside for it, whoever asks for it: the program's malloc stands in front of libc's.
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
