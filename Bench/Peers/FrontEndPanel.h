// The front end's screen for a person at a terminal, with a key for each button.
#pragma once

#include <string>
#include <vector>

#include "Bench/Peers/FrontEnd.h"

namespace Bench {

// Its lines as they stand now.
std::vector<std::string> PanelLines(const Screen& screen, bool isConnected, const std::string& note);

// Draws it whenever it changes and takes keys until the one for the end; the exit status.
int RunFrontEndPanel(FrontEnd& frontEnd);

}  // namespace Bench
