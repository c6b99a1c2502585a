// The mixer tool of the bench: the board records each call; no sound is changed.
#include <cstdio>

#include "Bench/Board/BoardState.h"
#include "Bench/Sound/ToolCall.h"

int main(int count, char** arguments) {
    const std::unique_ptr<Bench::Board> board = Bench::BoardOfTool("amixer");
    if (board == nullptr) {
        return 1;
    }
    const Bench::BoardLock state(board->State());
    Bench::NoteSoundCall(*state, Bench::CommandLine("amixer", count, arguments).c_str());
    const bool fails = Bench::FaultActive(*state, "amixer-fails");
    if (fails) {
        std::fputs("amixer: the mixer does not answer\n", stderr);
    }
    return fails ? 1 : 0;
}
