#include "Bench/Tools/Measure/Figures.h"

#include <algorithm>

#include "Bench/Common/Text.h"

namespace Bench {

namespace {

std::string NumberText(double value) { return Format("%.5g", value); }

}  // namespace

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
