// The document class of this program fails on request, in ways in which a sound document never fails.
#pragma once

#include <set>
#include <string>
#include <vector>

struct DocumentScript {
    std::set<std::string> failing;   // calls that return false, such as "IntoElement#2" for the second one
    std::vector<std::string> calls;  // with their arguments

    static DocumentScript& Get();
};
