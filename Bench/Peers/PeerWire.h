// The peer's end of a link in exact time, instead of a socket. One thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Bench {

class PeerWire {
public:
    struct View {
        std::uint32_t connections = 0;  // so far
        bool connected = false;
        std::string bytes;  // received on the newest connection since the last look
    };

    virtual ~PeerWire() = default;
    virtual View Take() = 0;
    virtual bool Send(std::string_view bytes) = 0;  // false without a connection
    virtual void End(bool abort) = 0;               // the connection
};

}  // namespace Bench
