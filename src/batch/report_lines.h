// What the batch program prints of a job's report. Portable.
#ifndef MOSAICON_BATCH_REPORT_LINES_H_
#define MOSAICON_BATCH_REPORT_LINES_H_

#include <map>
#include <string>

// The job's log without the lines that call an orthophoto OK whose result says otherwise: the job itself
// looks at no result. results holds what went wrong by orthophoto, empty for one that is complete. Lines
// end in "\n" then.
std::string WithoutFalseSuccess(const std::string& log, const std::map<std::string, std::string>& results);

#endif  // MOSAICON_BATCH_REPORT_LINES_H_
