// A peer on a port of its own, with a client in the analyzer's place that is connected to it.
#pragma once

#include <memory>
#include <optional>

#include "Tests/Bench/Peers/RawClient.h"

namespace Bench {

template <typename Peer>
class ConnectedPeer : public testing::Test {
protected:
    ConnectedPeer() {
        std::string error;
        peer = Peer::Listen(0, error);
        EXPECT_NE(peer, nullptr) << error;
        client.emplace(peer->Port());
        EXPECT_TRUE(peer->WaitForConnection(Deadline));
    }

    std::unique_ptr<Peer> peer;
    std::optional<RawClient> client;
};

}  // namespace Bench
