// Writes directly to the system log, for code that runs without the router.
#pragma once

#include "Frameworks/Utilities/StdString.h"

class UtilityFunctions {
public:
    virtual ~UtilityFunctions() = default;

    // Facility LOG_LOCAL1, priority LOG_NOTICE. The text is the format: a "%" in it is a conversion. Any thread.
    static void LogToSystem(const StdString& identity, const StdString& text);

    // Returns false and logs a line for a null pointer. Any thread.
    static bool CheckPointer(const void* pointer, int line, const StdString& file);
};
