// During its life, threads with default attributes get an impossible stack size, so none can be created.
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
        // 64 TiB; on 32 bits, all but the last megabyte, which is never free.
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
