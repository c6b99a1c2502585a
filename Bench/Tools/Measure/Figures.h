// What came out, held against what was promised: one line for each figure, met or missed in plain words.
#pragma once

#include <string>
#include <vector>

namespace Bench {

class Figures {
public:
    // One figure, of which `detail` tells more. It is met up to and with the limit.
    void Add(const std::string& name, double value, double limit, const std::string& unit, const std::string& detail);

    bool AllMet() const;
    // Two lines a figure: what it is, and how it was come by.
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
