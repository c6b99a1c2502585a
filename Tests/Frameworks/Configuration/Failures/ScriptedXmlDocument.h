// The document class of this program does as it is told: what a sound document never does to its callers is told here.
#pragma once

#include <set>
#include <string>
#include <vector>

struct DocumentScript {
    std::set<std::string> failing;   // calls that give false, such as "IntoElement#2" for the second one
    std::vector<std::string> calls;  // with their arguments

    static DocumentScript& Get();
};
