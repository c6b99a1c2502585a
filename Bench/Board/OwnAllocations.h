// While one lives, whatever this thread allocates is the bench's own and not the program's: it neither counts nor
// fails.
#pragma once

namespace Bench {

class OwnAllocations {
public:
    OwnAllocations();
    ~OwnAllocations();
    OwnAllocations(const OwnAllocations&) = delete;
    OwnAllocations& operator=(const OwnAllocations&) = delete;

    static bool Any();  // of this thread
};

}  // namespace Bench
