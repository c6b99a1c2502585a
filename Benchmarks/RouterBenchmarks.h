// One command to nine controllers, all on one core.
#pragma once

// Seconds from sending a command to the router until all nine, the router among them, have got it.
double BroadcastOurs();
double BroadcastCaf();

// Seconds per command, of many that are sent without waiting.
double BroadcastManyOurs();
double BroadcastManyCaf();
