// What the sound tools tell the board: their calls, and the clips that play.
#include <algorithm>
#include <csignal>
#include <cstdio>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

// The clip among those that play which was started last; null in silence.
const PlayerEntry* LastPlayer(const BoardState& state) {
    const std::int64_t now = MonotonicNow(state.clock);
    const PlayerEntry* last = nullptr;
    for (const PlayerEntry& player : state.sound.players) {
        if (player.ends > now && (last == nullptr || player.number > last->number)) {
            last = &player;
        }
    }
    return last;
}

// Where a new clip is written: that of a player that has ended, else of the one that ends first.
PlayerEntry& FreePlayer(SoundState& sound) {
    return *std::min_element(std::begin(sound.players), std::end(sound.players),
                             [](const PlayerEntry& left, const PlayerEntry& right) { return left.ends < right.ends; });
}

}  // namespace

void NoteSoundCall(BoardState& state, const char* line) {
    SoundState& sound = state.sound;
    std::snprintf(sound.calls[sound.called % SoundCallsKept], SoundLineLength, "%s", line);
    ++sound.called;
    TraceAct(state, "run %s", line);
}

bool SoundPlays(const BoardState& state) { return state.audioPlaying || LastPlayer(state) != nullptr; }

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
    constexpr std::int64_t Slice = 100000000;  // real: so soon the end of the run is seen
    for (std::int64_t now = MonotonicNow(state.clock); now < end && state.run.load() == run;
         now = MonotonicNow(state.clock)) {
        const std::uint32_t seen = state.clock.changes.load();
        FutexWait(state.clock.changes, seen, std::min(ToReal(state.clock, end - now), Slice));
    }
    Changed(state);
}

std::vector<std::string> Board::SoundCalls() const {
    const BoardLock lock(*m_state);
    const SoundState& sound = m_state->sound;
    const std::uint64_t kept = sound.called > SoundCallsKept ? sound.called - SoundCallsKept : 0;
    std::vector<std::string> list;
    for (std::uint64_t i = std::max(kept, sound.cleared); i < sound.called; ++i) {
        list.emplace_back(sound.calls[i % SoundCallsKept]);
    }
    return list;
}

void Board::ClearSoundCalls() {
    const BoardLock lock(*m_state);
    m_state->sound.cleared = m_state->sound.called;
}

bool Board::SoundPlaying() const {
    const BoardLock lock(*m_state);
    return SoundPlays(*m_state);
}

std::string Board::LoopingClip() const {
    const BoardLock lock(*m_state);
    const PlayerEntry* last = nullptr;
    for (const PlayerEntry& player : m_state->sound.players) {
        const bool loops = player.loop > 0 && kill(player.loop, 0) == 0;
        if (loops && (last == nullptr || player.number > last->number)) {
            last = &player;
        }
    }
    return last == nullptr ? "" : last->name;
}

std::string Board::PlayingClip() const {
    const BoardLock lock(*m_state);
    const PlayerEntry* player = LastPlayer(*m_state);
    return player == nullptr ? "" : player->name;
}

}  // namespace Bench
