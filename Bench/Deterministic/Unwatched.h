// The thread sanitizer does not know the token, so it would take the simulation's own data for shared without a lock.
// While an object of this class exists, it does not watch the calling thread. It must not know the token: then it would
// take the program's data for protected.
#pragma once

namespace Bench {

class Unwatched {
public:
    Unwatched() { Set(true); }
    ~Unwatched() { Set(false); }
    Unwatched(const Unwatched&) = delete;
    Unwatched& operator=(const Unwatched&) = delete;

    static void FindAll();  // before the first object; without the sanitizer they do nothing
    static void Set(bool begins);
};

}  // namespace Bench
