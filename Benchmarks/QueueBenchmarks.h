// Messages from thread to thread, all on one core.
#pragma once

// Seconds per message, of many that are sent as fast as possible.
double SendOneWayOurs();
double SendOneWayCondition();

// Seconds from sending a message to getting the answer, the median of many.
double RoundTripOurs();
double RoundTripCondition();
double RoundTripZeroMq();
