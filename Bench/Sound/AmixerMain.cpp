// The mixer tool of the bench: the board notes each call, and there is nothing to hear.
#include <cstdio>

#include "Bench/Board/BoardState.h"
#include "Bench/Sound/ToolCall.h"

int main(int count, char** arguments) {
    const std::unique_ptr<Bench::Board> board = Bench::BoardOfTool("amixer");
    if (board == nullptr) {
        return 1;
    }
    bool fails = false;
    {
        const Bench::BoardLock lock(board->State());
        Bench::NoteSoundCall(board->State(), Bench::CommandLine("amixer", count, arguments).c_str());
        fails = Bench::FaultActive(board->State(), Bench::FaultName::AmixerFails);
    }
    if (fails) {
        std::fputs("amixer: the mixer does not answer\n", stderr);
    }
    return fails ? 1 : 0;
}
