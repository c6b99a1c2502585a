#include "Bench/Common/Text.h"

#include <poll.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace Bench {

std::string Format(const char* format, ...) {
    char text[1024];
    va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    return text;
}

std::vector<std::string> SplitAtCommas(const std::string& line) {
    std::vector<std::string> fields;
    for (std::size_t start = 0; start <= line.size();) {
        const std::size_t end = std::min(line.find(',', start), line.size());
        fields.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    return fields;
}

std::optional<std::string> ReadWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    if (!file || (file.peek() != std::ifstream::traits_type::eof() && !(content << file.rdbuf())) || file.bad()) {
        return std::nullopt;
    }
    return content.str();
}

double Median(std::vector<double> values) {
    if (values.empty()) {
        return 0.0;
    }
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2.0;
}

void SleepMilliseconds(int milliseconds) { poll(nullptr, 0, milliseconds); }

}  // namespace Bench
