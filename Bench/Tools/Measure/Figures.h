// Measured figures against their limits, one line each.
#pragma once

#include <string>
#include <vector>

namespace Bench {

class Figures {
public:
    // Adds a figure, met up to and including the limit. `detail` says how it was measured.
    void Add(const std::string& name, double value, double limit, const std::string& unit, const std::string& detail);

    bool AllMet() const;
    // Two lines per figure: the figure and its detail.
    std::string Table() const;
    // "footprint: memory 1.21 times; ... ; 1 of 6 missed"
    std::string LastLine() const;

private:
    struct Row {
        std::string name;
        double value = 0.0;
        double limit = 0.0;
        std::string unit;
        std::string detail;

        bool Met() const { return value <= limit; }
    };

    std::vector<Row> m_rows;
};

}  // namespace Bench
