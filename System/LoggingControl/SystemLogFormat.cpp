#include "System/LoggingControl/SystemLogFormat.h"

StdString SystemLogFormat(const StdString& line) {
    const std::string& text = line.Text();
    std::string format;
    for (std::size_t at = 0; at < text.size(); ++at) {
        format += text[at];
        if (text[at] != '%') {
            continue;
        }
        const char conversion = at + 1 < text.size() ? text[at + 1] : '\0';
        if (conversion == '%' || conversion == 'm') {
            ++at;
            format += conversion;
        } else {
            format += '%';
        }
    }
    return format;
}
