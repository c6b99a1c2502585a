// A peer on a free port, with a client connected to it in place of the analyzer.
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
