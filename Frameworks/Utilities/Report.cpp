#include "Frameworks/Utilities/Report.h"

#include <atomic>

namespace {
std::atomic<ReportFunction> reportFunction{nullptr};
}

void SetReportFunction(ReportFunction function) { reportFunction = function; }

bool ReportError(const StdString& text, ControllerType origin) {
    if (const ReportFunction function = reportFunction) {
        function(text, ERROR_LOG_LEVEL, origin);
    }
    return false;
}
