// The shipped binary as a process on a board.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "Tests/Support/ReadFile.h"

class ProductProcess {
public:
    // The error stream and the standard output go to files of the folder. Without a board's folder the process runs
    // bare.
    ProductProcess(const std::string& folder, bool onBoard, const std::vector<std::string>& arguments = {})
        : m_folder(folder) {
        m_pid = fork();
        if (m_pid == 0) {
            Execute(onBoard, arguments);
        }
    }

    ProductProcess(const ProductProcess&) = delete;
    ProductProcess& operator=(const ProductProcess&) = delete;

    ~ProductProcess() {
        if (!m_status && m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
    }

    // As waitpid gives it.
    int Wait() {
        if (!m_status) {
            int status = 0;
            EXPECT_EQ(waitpid(m_pid, &status, 0), m_pid);
            m_status = status;
        }
        return *m_status;
    }

    bool IsRunning() {
        int status = 0;
        if (!m_status && waitpid(m_pid, &status, WNOHANG) == m_pid) {
            m_status = status;
        }
        return !m_status;
    }

    std::string Output() const { return Read("/product.out"); }
    std::string Errors() const { return Read("/product.err"); }

private:
    [[noreturn]] void Execute(bool onBoard, const std::vector<std::string>& arguments) const {
        dup2(open((m_folder + "/product.out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        dup2(open((m_folder + "/product.err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
        if (onBoard) {
            // A sanitizer's run-time has to come before everything else.
            setenv("LD_PRELOAD", SANITIZER_RUNTIME BINARY_FOLDER "/Bench/libboard.so", 1);
            setenv("VERNICOR_BENCH", m_folder.c_str(), 1);
        }
        std::string program = BINARY_FOLDER "/vernicor";
        std::vector<std::string> texts = arguments;
        std::vector<char*> pointers{program.data()};
        for (std::string& text : texts) {
            pointers.push_back(text.data());
        }
        pointers.push_back(nullptr);
        execv(program.c_str(), pointers.data());
        _exit(127);
    }

    std::string Read(const char* name) const { return ReadFile(m_folder + name); }

    std::string m_folder;
    pid_t m_pid = -1;
    std::optional<int> m_status;
};
