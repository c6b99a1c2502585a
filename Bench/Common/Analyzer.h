// The program on the bench. It runs below a keeper process, which ends it, and whatever it has started, when the bench
// asks for it or dies, in whichever way. One thread starts and stops it.
#pragma once

#include <sys/types.h>

#include <string>

namespace Bench {

class Analyzer {
public:
    Analyzer() = default;
    ~Analyzer() { Stop(); }
    Analyzer(const Analyzer&) = delete;
    Analyzer& operator=(const Analyzer&) = delete;

    // Starts `program` with the board's library in front of libc, on the board of the folder `bench`. What it prints
    // goes to the file `output`. False with a sentence in `error` if no process could be made.
    bool Start(const std::string& program, const std::string& library, const std::string& bench,
               const std::string& output, std::string& error);

    // True once it has ended by itself; then `reason` says how.
    bool HasEnded(std::string& reason);

    // As a shell tells its end: the exit status, or 128 and the signal; -1 as long as it hasn't ended by itself.
    int EndCode() const { return m_endCode; }

    // The process of the program; -1 if there is none.
    pid_t Process() const;

    // Ends it and returns when nothing of it is left.
    void Stop();

private:
    pid_t m_keeper = -1;
    int m_endCode = -1;
};

}  // namespace Bench
