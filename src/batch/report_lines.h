// What the batch program prints of a job's report. Portable.
#ifndef MOSAICON_BATCH_REPORT_LINES_H_
#define MOSAICON_BATCH_REPORT_LINES_H_

#include <string>
#include <vector>

#include "job/map_outcome.h"

// The job's log without the lines that call an orthophoto OK whose map is not complete: the job's log does
// not look at that. Lines end in "\n" then.
std::string WithoutFalseSuccess(const std::string& log, const std::vector<MapOutcome>& maps);

#endif  // MOSAICON_BATCH_REPORT_LINES_H_
