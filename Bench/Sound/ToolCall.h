// What the bench's two sound tools share. A shell of the program on the board starts them, like the tools of those
// names on an instrument. VERNICOR_BENCH is set to the board's folder.
#pragma once

#include <memory>
#include <string>

#include "Bench/Board/Board.h"

namespace Bench {

// The board of VERNICOR_BENCH. Detaches this process, so that the tool's own calls do not count. Returns null, with a
// line on the error stream, if there is none.
std::unique_ptr<Board> BoardOfTool(const std::string& tool);

// The command line as a shell reads it: "amixer set -q 'Output Mixer HiFi' mute". An argument with other characters
// than letters, digits and some marks is in single quotes.
std::string CommandLine(const std::string& tool, int count, char** arguments);

}  // namespace Bench
