// What one row of the table compares: a task done by us and by a peer, and the ratio that is aimed at.
#pragma once

// Does the task once or many times and gives the cost of once: seconds, or bytes where the row says so.
using Measure = double (*)();

enum class Goal {
    COST_AT_MOST,   // our cost over the peer's
    RATE_AT_LEAST,  // our rate over the peer's, which is the peer's cost over ours
    BYTES_AT_MOST,  // our cost alone, in bytes
    NO_GOAL,        // shown beside the others
};

struct Row {
    const char* task;
    const char* peer;
    int pairs;  // repetitions of us and the peer in turn
    Measure ours;
    Measure peers;
    Goal goal;
    double target;
};

// What was measured: medians over the pairs.
struct Outcome {
    const Row* row;
    double ours;
    double peers;
    double ratio;  // the median of the pairs' own ratios, as the goal takes them
};
