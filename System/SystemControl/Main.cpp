#include <cstdio>
#include <string_view>

#include "Frameworks/Utilities/Version.h"
#include "System/SystemControl/RunSystem.h"

// No argument, or the word "&" that some start scripts leave behind, runs the system; anything else but --version does
// nothing.
int main(int argumentCount, char** arguments) {
    if (argumentCount == 1) {
        return RunSystem();
    }
    if (argumentCount != 2) {
        return 0;
    }
    const std::string_view argument = arguments[1];
    if (argument == "--version") {
        std::printf("%s\n", GetVersionText().CString());
    }
    return argument == "&" ? RunSystem() : 0;
}
