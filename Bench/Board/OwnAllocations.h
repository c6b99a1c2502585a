// While one exists, allocations of this thread are the bench's and not the program's: they neither count nor fail.
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
