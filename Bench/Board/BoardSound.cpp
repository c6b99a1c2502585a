// What the sound tools report to the board: their calls, and the clips that play.
#include <algorithm>
#include <csignal>
#include <cstdio>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

// The player started last among those that `matches` accepts; null if there is none.
template <typename Matches>
const PlayerEntry* LastPlayer(const BoardState& state, Matches matches) {
    const PlayerEntry* last = nullptr;
    for (const PlayerEntry& player : state.sound.players) {
        if (matches(player) && (last == nullptr || player.number > last->number)) {
            last = &player;
        }
    }
    return last;
}

const PlayerEntry* LastPlaying(const BoardState& state) {
    const std::int64_t now = MonotonicNow(state.clock);
    return LastPlayer(state, [now](const PlayerEntry& player) { return player.ends > now; });
}

// The entry for a new clip: that of the player that has ended or ends first.
PlayerEntry& FreePlayer(SoundState& sound) {
    return *std::min_element(std::begin(sound.players), std::end(sound.players),
                             [](const PlayerEntry& left, const PlayerEntry& right) { return left.ends < right.ends; });
}

std::string NameOf(const PlayerEntry* player) { return player == nullptr ? "" : player->name; }

}  // namespace

void NoteSoundCall(BoardState& state, const char* line) {
    SoundState& sound = state.sound;
    std::snprintf(sound.calls[sound.called % SoundCallsKept], SoundLineLength, "%s", line);
    ++sound.called;
    Trace(state, 0, "run %s", line);
}

bool SoundPlays(const BoardState& state) { return state.audioPlaying || LastPlaying(state) != nullptr; }

void PlayClip(BoardState& state, const char* name, std::int64_t nanoSeconds, pid_t loop) {
    std::int64_t end = 0;
    const std::uint32_t run = state.run.load();
    {
        const BoardLock lock(state);
        end = MonotonicNow(state.clock) + nanoSeconds;
        PlayerEntry& player = FreePlayer(state.sound);
        player = PlayerEntry{};
        player.ends = end;
        player.loop = loop;
        player.number = ++state.sound.played;
        std::snprintf(player.name, sizeof(player.name), "%s", name);
        Changed(state);
    }
    constexpr std::int64_t Slice = 100000000;  // real: the end of the run is noticed this late
    for (std::int64_t now = MonotonicNow(state.clock); now < end && state.run.load() == run;
         now = MonotonicNow(state.clock)) {
        const std::uint32_t seen = state.clock.changes.load();
        FutexWait(state.clock.changes, seen, std::min(ToReal(state.clock, end - now), Slice));
    }
    Changed(state);
}

std::vector<std::string> Board::SoundCalls() const {
    const BoardLock state(*m_state);
    const SoundState& sound = state->sound;
    const std::uint64_t kept = sound.called > SoundCallsKept ? sound.called - SoundCallsKept : 0;
    std::vector<std::string> list;
    for (std::uint64_t i = std::max(kept, sound.cleared); i < sound.called; ++i) {
        list.emplace_back(sound.calls[i % SoundCallsKept]);
    }
    return list;
}

void Board::ClearSoundCalls() {
    const BoardLock state(*m_state);
    state->sound.cleared = state->sound.called;
}

bool Board::SoundPlaying() const { return SoundPlays(*BoardLock(*m_state)); }
std::string Board::PlayingClip() const { return NameOf(LastPlaying(*BoardLock(*m_state))); }

std::string Board::LoopingClip() const {
    const BoardLock state(*m_state);
    return NameOf(LastPlayer(*state, [](const PlayerEntry& player) {
        return player.loop >= FirstVirtualProcess || (player.loop > 0 && kill(player.loop, 0) == 0);
    }));
}

}  // namespace Bench
