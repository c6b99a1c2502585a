#include "Frameworks/Configuration/MissingSetting.h"

#include <cstdio>
#include <cstdlib>

#include "Frameworks/Utilities/UtilityFunctions.h"

namespace {

[[noreturn]] void End(const StdString& line) {
    std::fputs((line + "\n").CString(), stderr);
    StdString format = line;
    format.Replace("%", "%%");
    UtilityFunctions::LogToSystem("Vernicor", format);
    std::abort();
}

}  // namespace

void EndForMissingKey(const StdString& place, const StdString& key) { End(place + " has no key " + key); }

void EndForMissingSection(const StdString& path, const StdString& sectionName) {
    End(path + ": section " + sectionName + " is missing or can't be read");
}
