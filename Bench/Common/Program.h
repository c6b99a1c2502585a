// What the programs of the bench share: exit status, error messages, signals.
#pragma once

#include <csignal>
#include <string>

namespace Bench {

inline constexpr int ExitSuccess = 0;
inline constexpr int ExitFailure = 1;
inline constexpr int ExitWrongArgument = 2;
inline constexpr int ExitSignalBase = 128;

// Prints "program: error" on the error stream and returns ExitWrongArgument.
int Refuse(const std::string& program, const std::string& error);

// From now on SIGINT, SIGTERM and SIGHUP don't end the process. Returns the place of the last one's number, 0 until
// one comes.
const volatile std::sig_atomic_t& CatchSignals();

}  // namespace Bench
