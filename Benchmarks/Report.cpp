#include "Benchmarks/Report.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace {

std::string Digits(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string Cost(const Row& row, double cost) {
    if (row.goal == Goal::BYTES_AT_MOST) {
        return Digits(cost, 1) + " B";
    }
    if (cost >= 1e-3) {
        return Digits(cost * 1e3, 2) + " ms";
    }
    return cost >= 1e-6 ? Digits(cost * 1e6, 2) + " us" : Digits(cost * 1e9, 2) + " ns";
}

std::string Target(const Row& row) {
    switch (row.goal) {
        case Goal::COST_AT_MOST:
            return "cost at most " + Digits(row.target, 2);
        case Goal::RATE_AT_LEAST:
            return "rate at least " + Digits(row.target, 2);
        case Goal::BYTES_AT_MOST:
            return "at most " + Digits(row.target, 0) + " B";
        case Goal::NO_GOAL:
            break;
    }
    return "for comparison";
}

bool IsMissed(const Outcome& outcome) {
    switch (outcome.row->goal) {
        case Goal::COST_AT_MOST:
            return outcome.ratio > outcome.row->target;
        case Goal::RATE_AT_LEAST:
            return outcome.ratio < outcome.row->target;
        case Goal::BYTES_AT_MOST:
            return outcome.ours > outcome.row->target;
        case Goal::NO_GOAL:
            break;
    }
    return false;
}

std::string Verdict(const Outcome& outcome) {
    if (outcome.row->goal == Goal::NO_GOAL) {
        return "";
    }
    return IsMissed(outcome) ? "missed" : "met";
}

void PrintLine(const std::string& task, const std::string& peer, const std::string& ours, const std::string& peers,
               const std::string& ratio, const std::string& target, const std::string& verdict) {
    std::printf("%-42s %-20s %11s %11s %6s  %-18s %s\n", task.c_str(), peer.c_str(), ours.c_str(), peers.c_str(),
                ratio.c_str(), target.c_str(), verdict.c_str());
}

}  // namespace

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

bool PrintTable(const std::vector<Outcome>& outcomes) {
    PrintLine("task", "peer", "ours", "the peer's", "ratio", "target", "");
    bool isMet = true;
    for (const Outcome& outcome : outcomes) {
        const Row& row = *outcome.row;
        PrintLine(row.task, row.peer, Cost(row, outcome.ours), Cost(row, outcome.peers), Digits(outcome.ratio, 2),
                  Target(row), Verdict(outcome));
        isMet = isMet && !IsMissed(outcome);
    }
    return isMet;
}
