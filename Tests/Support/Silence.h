// Whether the instrument's sound has ended.
#pragma once

#include "Bench/Board/Board.h"

// The clip that plays ends, and none follows it within twenty simulated seconds: but for one, whose tool was on its way
// when the player ended.
inline bool BecomesSilent(Bench::Board& board) {
    for (int clips = 0; clips < 2; ++clips) {
        if (!board.WaitUntil([&board] { return !board.SoundPlaying(); })) {
            return false;
        }
        board.ClearSoundCalls();
        const double end = board.Seconds() + 20.0;
        if (board.WaitUntil([&board, end] { return board.Seconds() > end; }) && board.SoundCalls().empty()) {
            return true;
        }
    }
    return false;
}
