// Checks that the instrument's sound has ended.
#pragma once

#include "Bench/Board/Board.h"

// The current clip ends and none follows within twenty simulated seconds. One more clip is allowed, if its tool was
// already starting when the player ended.
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
