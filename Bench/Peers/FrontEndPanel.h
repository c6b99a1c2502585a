// The front end's screen for a person at a terminal, with a key for each button.
#pragma once

#include <string>
#include <vector>

#include "Bench/Peers/FrontEnd.h"

namespace Bench {

// The lines to show.
std::vector<std::string> PanelLines(const Screen& screen, bool isConnected, const std::string& note);

// Draws the panel when it changes and reads keys until the user quits. Returns the exit status.
int RunFrontEndPanel(FrontEnd& frontEnd);

}  // namespace Bench
