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

    // How to start it.
    struct Launch {
        std::string program;
        std::string library;  // preloaded
        std::string bench;    // the folder of its board
        std::string output;   // the file that gets what it prints
        bool exact = false;   // on one processor, and with the same addresses each time
    };

    // Returns false with the reason in `error` if no process could be made.
    bool Start(const Launch& launch, std::string& error);

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
