// The lines of the data files, from record to text: comma-separated fields without quotes, each line ended by carriage
// return and line feed. The column lines have one field more than the records, the version. Pure functions, for any
// thread.
#pragma once

#include "Frameworks/Messaging/LogInfo.h"
#include "Frameworks/Messaging/MeasurementStatusInfo.h"
#include "System/Messages/MeasurementResults.h"
#include "System/Messages/StepResults.h"

StdString MeasurementColumns();
StdString StepColumns();
StdString StatusColumns();

// With the record's own time.
StdString MeasurementRecord(const MeasurementResults& results);
StdString StepRecords(const StepResults& results);            // one line a sample; no samples, no text
StdString StatusRecord(const MeasurementStatusInfo& status);  // a comma in the status makes one more field

// Adds a LOG_INFO element with type, value and time to the document of the line. False without a document, or where the
// element or one of the attributes can't be written.
bool WriteLogInfoXML(const LogInfo& logInfo);
