// ./run as a process: started, waited for, its output read. Its output goes to files, so no pipe can fill up.
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Tests/Support/ReadFile.h"
#include "Tests/Support/TemporaryFolder.h"

inline void WriteFile(const std::string& path, const std::string& text, bool append = false) {
    std::ofstream(path, append ? std::ios::app : std::ios::trunc) << text;
}

class BenchRun {
public:
    BenchRun() = default;
    BenchRun(const BenchRun&) = delete;
    BenchRun& operator=(const BenchRun&) = delete;
    ~BenchRun() {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
    }

    void Start(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), BINARY_FOLDER "/bench-run");
        m_pid = fork();
        if (m_pid == 0) {
            const int out = open((m_folder / "out").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
            const int err = open((m_folder / "err").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
            dup2(out, STDOUT_FILENO);
            dup2(err, STDERR_FILENO);
            std::vector<char*> pointers;
            for (std::string& argument : arguments) {
                pointers.push_back(argument.data());
            }
            pointers.push_back(nullptr);
            execv(pointers[0], pointers.data());
            _exit(99);
        }
    }

    void Signal(int signal) const { kill(m_pid, signal); }

    // The exit status; below 0 the signal that ended it.
    int Wait() {
        int status = 0;
        while (waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
        }
        m_pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    int Run(const std::vector<std::string>& arguments) {
        Start(arguments);
        return Wait();
    }

    std::string Out() const { return ReadFile(m_folder / "out"); }
    std::string Err() const { return ReadFile(m_folder / "err"); }

private:
    TemporaryFolder m_folder;
    pid_t m_pid = -1;
};
