// Writes one report of a program that has crashed and waits. Win32.
#ifndef MOSAICON_CRASHRPT_REPORT_WRITER_H_
#define MOSAICON_CRASHRPT_REPORT_WRITER_H_

#include <windows.h>

#include <string>
#include <vector>

#include "crashrpt/hand_over.h"
#include "crashrpt/report_store.h"

struct WrittenReport {
  std::string name;                // empty when none could be written
  std::vector<std::string> files;  // all that it has, report.xml too
  std::string error;               // why there is none
};

// process: the crashed one, with the right to read its memory. A report without a dump or a picture is
// still a report.
WrittenReport WriteReport(const HandOver& handOver, HANDLE process, const ReportStore& store);

#endif  // MOSAICON_CRASHRPT_REPORT_WRITER_H_
