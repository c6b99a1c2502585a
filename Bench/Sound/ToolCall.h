// What the two sound tools of the bench share. They are started by a shell of the program on the board, like the tools
// of that name on an instrument, and know the board by VERNICOR_BENCH.
#pragma once

#include <memory>
#include <string>

#include "Bench/Board/Board.h"

namespace Bench {

// The board of this process, which is then no longer attached to it itself: what a tool does with files counts for
// nothing. Null, with a line on the error stream, where there is none.
std::unique_ptr<Board> BoardOfTool(const std::string& tool);

// The command line as a shell would take it: an argument with anything but letters, digits and some marks stands
// between single quotes. "amixer set -q 'Output Mixer HiFi' mute"
std::string CommandLine(const std::string& tool, int count, char** arguments);

}  // namespace Bench
