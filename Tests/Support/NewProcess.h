// Runs an action in a new process, as after a restart: process-wide variables have their initial values there. Only
// while this process has one thread.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <string>

class NewProcess {
public:
    using Tell = std::function<void(const std::string& text)>;

    // The action writes its answer through a pipe.
    explicit NewProcess(const std::function<void(const Tell&)>& action) {
        EXPECT_EQ(pipe(m_pipe), 0);
        m_pid = fork();
        if (m_pid == 0) {
            close(m_pipe[0]);
            action([this](const std::string& text) { Write(text); });
            _exit(0);
        }
        close(m_pipe[1]);
    }
    NewProcess(const NewProcess&) = delete;
    NewProcess& operator=(const NewProcess&) = delete;
    ~NewProcess() {
        Kill();
        close(m_pipe[0]);
    }

    void Kill() {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            Wait();
        }
    }

    // As waitpid gives it.
    int Wait() {
        int status = 0;
        EXPECT_EQ(waitpid(m_pid, &status, 0), m_pid);
        m_pid = -1;
        return status;
    }

    // All that the action wrote, after the process has ended.
    std::string Answer() const {
        std::string answer;
        for (std::string piece = Next(); !piece.empty(); piece = Next()) {
            answer += piece;
        }
        return answer;
    }

    // The next part, as soon as there is any; empty at the end.
    std::string Next() const {
        char piece[4096];
        const ssize_t count = read(m_pipe[0], piece, sizeof piece);
        return {piece, count > 0 ? static_cast<std::size_t>(count) : 0};
    }

private:
    void Write(const std::string& text) const {
        if (write(m_pipe[1], text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
            _exit(1);
        }
    }

    int m_pipe[2] = {-1, -1};
    pid_t m_pid = -1;
};
