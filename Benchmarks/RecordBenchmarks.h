// A measurement record in the data file of the day, to the end of the flush.
#pragma once

// Seconds for the text of a record, written and flushed.
double WriteRecordOurs();
double WriteRecordPrintf();

// Seconds for the same with everything that comes with it on the analyzer: is the card in its slot, is it mounted, is
// it still the same day, is the file empty.
double LogRecordOurs();
double LogRecordPrintf();
