// One row of the table: a task done by us and by a peer, and the target ratio.
#pragma once

// Does the task once or many times and returns the cost of one: seconds, or bytes if the row's goal is in bytes.
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

// The result: medians over the pairs.
struct Outcome {
    const Row* row;
    double ours;
    double peers;
    double ratio;  // the median of the pairs' ratios, in the sense of the goal
};
