// The analyzer's process on the bench. It runs below a keeper process, which ends it and all processes that it started
// if the bench asks for it or dies. One thread.
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

    // Starts `program` with the board's library preloaded, on the board in the folder `bench`. Its output goes to the
    // file `output`. Returns false with the reason in `error` if no process could be made.
    bool Start(const std::string& program, const std::string& library, const std::string& bench,
               const std::string& output, std::string& error);

    // Returns true once it has ended by itself; then `reason` says how.
    bool HasEnded(std::string& reason);

    // The status that a shell would report: the exit status, or 128 and the signal; -1 until it has ended by itself.
    int EndCode() const { return m_endCode; }

    // The process of the program; -1 if there is none.
    pid_t Process() const;

    // Ends it and returns when none of its processes is left.
    void Stop();

private:
    pid_t m_keeper = -1;
    int m_endCode = -1;
};

}  // namespace Bench
