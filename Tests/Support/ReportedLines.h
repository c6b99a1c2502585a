// Collects the lines that classes below the message layer report, during its life.
#pragma once

#include <string>
#include <vector>

#include "Frameworks/Utilities/Report.h"

struct ReportedLine {
    std::string text;
    LogLevel level;
    ControllerType origin;
};

class ReportedLines {
public:
    ReportedLines() {
        lines.clear();
        SetReportFunction([](const StdString& text, LogLevel level, ControllerType origin) {
            lines.push_back({text.Text(), level, origin});
        });
    }
    ReportedLines(const ReportedLines&) = delete;
    ReportedLines& operator=(const ReportedLines&) = delete;
    ~ReportedLines() { SetReportFunction(nullptr); }

    // One entry per line; a line that is not an error of SystemControl ends with its level and origin.
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const ReportedLine& line : lines) {
            const bool isDefault = line.level == ERROR_LOG_LEVEL && line.origin == SYSTEM_CONTROL;
            texts.push_back(isDefault ? line.text
                                      : line.text + " level " + std::to_string(line.level) + " origin " +
                                            std::to_string(line.origin));
        }
        return texts;
    }

private:
    static inline std::vector<ReportedLine> lines;
};
