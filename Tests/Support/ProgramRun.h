// A program of this build, run to its end, with all that it printed.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>

struct ProgramRun {
    int status = -1;  // 128 plus the signal if one ended it
    std::string text;
};

// Arguments as a shell takes them; the error stream goes with the output.
inline ProgramRun RunProgram(const std::string& program, const std::string& arguments) {
    ProgramRun run;
    FILE* pipe = popen((std::string(BINARY_FOLDER "/") + program + " " + arguments + " 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        return run;
    }
    char part[4096];
    for (std::size_t got = fread(part, 1, sizeof part, pipe); got > 0; got = fread(part, 1, sizeof part, pipe)) {
        run.text.append(part, got);
    }
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return run;
}
