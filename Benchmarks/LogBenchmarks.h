// A log line, at its writer's cost.
#pragma once

// Seconds of the sender's thread for a line of a level that passes.
double LogPassingOurs();
double LogPassingSpdlog();

// The same for a single line whose readers sleep; the peer keeps its line, or hands it to the system.
double LogSingleOurs();
double LogSingleSpdlog();
double LogSingleFlushedSpdlog();

// Seconds for a line of a level that does not pass.
double LogDroppedOurs();
double CompareIntegers();
