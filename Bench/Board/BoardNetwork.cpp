// Which ports of the machine the program reaches, and its own name.
#include <algorithm>
#include <cstdio>
#include <iterator>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

constexpr int HighestPort = 65535;

bool IsPort(int port) { return port > 0 && port <= HighestPort; }

// The entry of that port; 0 finds a free one. Null where there is none.
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
    const BoardLock lock(*m_state);
    if (!IsPort(instrumentPort) || !IsPort(realPort)) {
        return false;
    }
    PortEntry* entry = FindPort(m_state->network, instrumentPort);
    entry = entry == nullptr ? FindPort(m_state->network, 0) : entry;
    if (entry == nullptr) {
        return false;
    }
    *entry = {instrumentPort, realPort};
    return true;
}

void Board::UnmapPort(int instrumentPort) {
    const BoardLock lock(*m_state);
    PortEntry* entry = IsPort(instrumentPort) ? FindPort(m_state->network, instrumentPort) : nullptr;
    if (entry != nullptr) {
        *entry = {};
    }
}

void Board::SetLoopbackOpen(bool open) {
    const BoardLock lock(*m_state);
    m_state->network.open = open;
}

void Board::SetHostName(const std::string& name) {
    const BoardLock lock(*m_state);
    std::snprintf(m_state->network.hostName, sizeof(m_state->network.hostName), "%s", name.c_str());
}

}  // namespace Bench
