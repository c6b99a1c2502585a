#include "Frameworks/Utilities/UtilityFunctions.h"

#include <syslog.h>

void UtilityFunctions::LogToSystem(const StdString& identity, const StdString& text) {
    openlog(identity.CString(), LOG_PID | LOG_CONS | LOG_NDELAY, LOG_LOCAL1);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    syslog(LOG_NOTICE, text.CString());
#pragma GCC diagnostic pop
    closelog();
}

bool UtilityFunctions::CheckPointer(const void* pointer, int line, const StdString& file) {
    if (pointer != nullptr) {
        return true;
    }
    StdString text;
    text.FromInteger(line);
    LogToSystem(file, text + " had a null pointer sent to it " + " in file " + file);
    return false;
}
