#include "Bench/Measure/Figures.h"

#include <algorithm>
#include <cstdio>

namespace Bench {

namespace {

std::string NumberText(double value) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.5g", value);
    return text;
}

}  // namespace

double Median(std::vector<double> values) {
    if (values.empty()) {
        return 0.0;
    }
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2.0;
}

void Figures::Add(const std::string& name, double value, double limit, const std::string& unit,
                  const std::string& detail) {
    m_rows.push_back({name, value, limit, unit, detail});
}

bool Figures::AllMet() const {
    return std::all_of(m_rows.begin(), m_rows.end(), [](const Row& row) { return row.Met(); });
}

std::string Figures::Table() const {
    std::string table;
    for (const Row& row : m_rows) {
        table += row.name + ": " + NumberText(row.value) + " " + row.unit + ", at most " + NumberText(row.limit) +
                 (row.Met() ? ": met\n    " : ": MISSED\n    ") + row.detail + "\n";
    }
    return table;
}

std::string Figures::LastLine() const {
    std::string line = "footprint: ";
    for (const Row& row : m_rows) {
        line += row.name + " " + NumberText(row.value) + " " + row.unit + "; ";
    }
    const auto missed = std::count_if(m_rows.begin(), m_rows.end(), [](const Row& row) { return !row.Met(); });
    return line +
           (missed == 0 ? "all met" : std::to_string(missed) + " of " + std::to_string(m_rows.size()) + " missed");
}

}  // namespace Bench
