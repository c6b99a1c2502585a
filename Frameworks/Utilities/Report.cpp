#include "Frameworks/Utilities/Report.h"

#include <atomic>

namespace {
std::atomic<ReportFunction> reportFunction{nullptr};
}

void SetReportFunction(ReportFunction function) { reportFunction = function; }

void Report(const StdString& text, LogLevel level, ControllerType origin) {
    if (const ReportFunction function = reportFunction) {
        function(text, level, origin);
    }
}
