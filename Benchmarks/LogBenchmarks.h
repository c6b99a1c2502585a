// A line for the log, as its writer pays for it.
#pragma once

// Seconds of the sender's thread for a line of a level that passes.
double LogPassingOurs();
double LogPassingSpdlog();

// The same for a single line whose readers sleep, beside a line that is kept and one that is handed to the system.
double LogSingleOurs();
double LogSingleSpdlog();
double LogSingleFlushedSpdlog();

// Seconds for a line of a level that does not pass.
double LogDroppedOurs();
double CompareIntegers();
