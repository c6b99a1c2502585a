#include "Bench/Instrument/Instrument.h"
