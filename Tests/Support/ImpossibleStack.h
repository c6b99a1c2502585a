// While it lives, threads of default attributes get a stack that no machine has, and so can't be made.
#pragma once

#include <pthread.h>

#include <cstddef>
#include <cstdint>

class ImpossibleStack {
public:
    ImpossibleStack() {
        pthread_attr_t attributes;
        pthread_getattr_default_np(&m_before);
        pthread_getattr_default_np(&attributes);
        // 64 TiB; where an address has 32 bits, all but the last megabyte of them, which no program leaves free.
        constexpr bool isWide = sizeof(void*) == 8;
        pthread_attr_setstacksize(&attributes, static_cast<std::size_t>(isWide ? std::uint64_t{1} << 46 : 0xFFF00000U));
        pthread_setattr_default_np(&attributes);
        pthread_attr_destroy(&attributes);
    }
    ImpossibleStack(const ImpossibleStack&) = delete;
    ImpossibleStack& operator=(const ImpossibleStack&) = delete;
    ~ImpossibleStack() {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }

private:
    pthread_attr_t m_before{};
};
