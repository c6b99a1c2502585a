// The lines of the data files: comma-separated fields without quotes; each line ends with carriage return and line
// feed. The column lines have one more field than the records, the version. Pure functions; any thread.
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
StdString StepRecords(const StepResults& results);            // one line per sample; empty without samples
StdString StatusRecord(const MeasurementStatusInfo& status);  // a comma in the status makes another field

// Adds a LOG_INFO element with type, value and time to the document of the line. Returns false without a document, or
// if the element or an attribute cannot be written.
bool WriteLogInfoXML(const LogInfo& logInfo);
