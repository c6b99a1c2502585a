// Which ports of the machine the program reaches, and the name of its host.
#include <algorithm>
#include <cstdio>
#include <iterator>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

bool IsPort(int port) { return port > 0 && port <= MaxPort; }

// The entry of that port; 0 finds a free entry. Null if there is none.
template <typename Network>
auto* FindPort(Network& network, int port) {
    auto* entry = std::find_if(std::begin(network.ports), std::end(network.ports),
                               [port](const PortEntry& each) { return each.instrument == port; });
    return entry == std::end(network.ports) ? nullptr : entry;
}

}  // namespace

int RealPort(const BoardState& state, int port) {
    const PortEntry* entry = IsPort(port) ? FindPort(state.network, port) : nullptr;
    if (entry != nullptr) {
        return entry->real;
    }
    return state.network.open ? port : 0;
}

bool Board::MapPort(int instrumentPort, int realPort) {
    const BoardLock state(*m_state);
    if (!IsPort(instrumentPort) || !IsPort(realPort)) {
        return false;
    }
    PortEntry* entry = FindPort(state->network, instrumentPort);
    entry = entry == nullptr ? FindPort(state->network, 0) : entry;
    if (entry == nullptr) {
        return false;
    }
    *entry = {instrumentPort, realPort};
    return true;
}

void Board::UnmapPort(int instrumentPort) {
    const BoardLock state(*m_state);
    PortEntry* entry = IsPort(instrumentPort) ? FindPort(state->network, instrumentPort) : nullptr;
    if (entry != nullptr) {
        *entry = {};
    }
}

void Board::SetLoopbackOpen(bool open) { BoardLock(*m_state)->network.open = open; }

void Board::SetHostName(const std::string& name) {
    const BoardLock state(*m_state);
    std::snprintf(state->network.hostName, sizeof(state->network.hostName), "%s", name.c_str());
}

}  // namespace Bench
