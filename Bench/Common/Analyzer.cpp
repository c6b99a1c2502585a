#include "Bench/Common/Analyzer.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/personality.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <vector>

namespace Bench {

namespace {

// The keeper's exit status if the program could not be started.
constexpr int StartFailure = 127;

std::vector<std::string> MakeEnvironment(const Analyzer::Launch& launch) {
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::string name = text.substr(0, text.find('='));
        if (name != "LD_PRELOAD" && name != "VERNICOR_BENCH" && name != "TZ") {
            environment.push_back(text);
        }
    }
    environment.push_back("LD_PRELOAD=" + launch.library);
    environment.push_back("VERNICOR_BENCH=" + launch.bench);
    environment.emplace_back("TZ=UTC");
    return environment;
}

// A switch from one thread to the next is then twice as fast, and an address that a program takes for a number is the
// same in each run.
void MakeExact() {
    const int processor = sched_getcpu();
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<std::size_t>(processor < 0 ? 0 : processor), &one);
    sched_setaffinity(0, sizeof(one), &one);  // without it, the run is only slower
    personality(ADDR_NO_RANDOMIZE);
}

// Runs in the new process until it becomes the program.
[[noreturn]] void BecomeProgram(const Analyzer::Launch& launch, pid_t keeper) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != keeper) {
        _exit(StartFailure);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
    const int output = open(launch.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0644);
    if (input < 0 || output < 0 || dup2(input, STDIN_FILENO) < 0 || dup2(output, STDOUT_FILENO) < 0 ||
        dup2(output, STDERR_FILENO) < 0) {
        _exit(StartFailure);
    }
    if (launch.exact) {
        MakeExact();
    }
    const std::vector<std::string> entries = MakeEnvironment(launch);
    std::vector<char*> environment;
    environment.reserve(entries.size() + 1);
    for (const std::string& entry : entries) {
        environment.push_back(const_cast<char*>(entry.c_str()));
    }
    environment.push_back(nullptr);
    char* const arguments[] = {const_cast<char*>(launch.program.c_str()), nullptr};
    execve(launch.program.c_str(), arguments, environment.data());
    _exit(StartFailure);
}

// A file of /proc that lists a process's children, the oldest first.
std::string ChildrenOf(pid_t process) {
    const std::string number = std::to_string(process);
    return "/proc/" + number + "/task/" + number + "/children";
}

// Ends the program's process group and its orphans, whose parent is now the keeper.
void EndAll(pid_t program) {
    const std::string children = ChildrenOf(getpid());
    kill(-program, SIGKILL);
    pid_t ended = 0;
    while ((ended = waitpid(-1, nullptr, WNOHANG)) >= 0) {
        if (ended > 0) {
            continue;
        }
        std::ifstream list(children);
        pid_t child = 0;
        while (list >> child) {
            kill(child, SIGKILL);
        }
        usleep(1000);
    }
}

// The keeper: waits until the program ends, or until the bench ends or asks for the end.
[[noreturn]] void Keep(const Analyzer::Launch& launch, pid_t bench) {
    sigset_t awaited;
    sigemptyset(&awaited);
    for (const int signal : {SIGTERM, SIGCHLD, SIGINT, SIGHUP}) {
        sigaddset(&awaited, signal);
    }
    sigprocmask(SIG_BLOCK, &awaited, nullptr);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t keeper = getpid();
    if (getppid() != bench) {
        _exit(StartFailure);
    }
    const pid_t program = fork();
    if (program < 0) {
        _exit(StartFailure);
    }
    if (program == 0) {
        BecomeProgram(launch, keeper);
    }
    setpgid(program, program);
    while (true) {
        int signal = 0;
        sigwait(&awaited, &signal);
        if (signal == SIGTERM) {
            EndAll(program);
            _exit(0);
        }
        int status = 0;
        pid_t ended = 0;
        while ((ended = waitpid(-1, &status, WNOHANG)) > 0) {
            if (ended != program) {
                continue;
            }
            EndAll(program);
            // As a shell reports it: the exit status, or 128 and the signal.
            _exit(WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status));
        }
    }
}

}  // namespace

bool Analyzer::Start(const Launch& launch, std::string& error) {
    const pid_t self = getpid();
    m_endCode = -1;
    m_keeper = fork();
    if (m_keeper < 0) {
        error = std::string("can't start a process: ") + std::strerror(errno);
        return false;
    }
    if (m_keeper == 0) {
        Keep(launch, self);
    }
    return true;
}

bool Analyzer::HasEnded(std::string& reason) {
    int status = 0;
    if (m_keeper < 0 || waitpid(m_keeper, &status, WNOHANG) != m_keeper) {
        return false;
    }
    m_keeper = -1;
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    m_endCode = code;
    if (code == StartFailure) {
        reason = "the analyzer could not be started";
    } else if (code > 128 && code < 128 + NSIG) {
        reason = std::string("the analyzer was ended by a signal: ") + strsignal(code - 128);
    } else {
        reason = "the analyzer ended with status " + std::to_string(code);
    }
    return true;
}

pid_t Analyzer::Process() const {
    pid_t program = -1;
    return m_keeper >= 0 && std::ifstream(ChildrenOf(m_keeper)) >> program ? program : -1;
}

void Analyzer::Stop() {
    if (m_keeper < 0) {
        return;
    }
    kill(m_keeper, SIGTERM);
    while (waitpid(m_keeper, nullptr, 0) < 0 && errno == EINTR) {
    }
    m_keeper = -1;
}

}  // namespace Bench
