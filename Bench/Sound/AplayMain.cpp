// The player of the bench: the board records the call and plays each clip for its length in simulated time. Every
// argument that is not an option is a file.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/BoardState.h"
#include "Bench/Sound/Clip.h"
#include "Bench/Sound/ToolCall.h"

namespace {

bool Play(const Bench::Board& board, const std::string& path) {
    Bench::Target target;
    Bench::Resolve(board.State(), path.c_str(), target);
    std::string error;
    const std::optional<std::int64_t> length = Bench::ClipNanoSeconds(target.inside ? target.path : path, error);
    if (!length) {
        std::fprintf(stderr, "aplay: %s: %s\n", path.c_str(), error.c_str());
        return false;
    }
    const char* loop = std::getenv("VERNICOR_LOOP");
    Bench::PlayClip(board.State(), path.substr(path.rfind('/') + 1).c_str(), *length,
                    loop == nullptr ? 0 : static_cast<pid_t>(std::strtol(loop, nullptr, 10)));
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    const std::unique_ptr<Bench::Board> board = Bench::BoardOfTool("aplay");
    if (board == nullptr) {
        return 1;
    }
    Bench::NoteSoundCall(*Bench::BoardLock(board->State()), Bench::CommandLine("aplay", count, arguments).c_str());
    bool played = true;
    for (int i = 1; i < count; ++i) {
        if (arguments[i][0] != '-') {
            played = Play(*board, arguments[i]) && played;
        }
    }
    return played ? 0 : 1;
}
