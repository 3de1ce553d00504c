// How reports are named, and the times in them. Portable.
#ifndef MOSAICON_CRASHRPT_REPORT_NAME_H_
#define MOSAICON_CRASHRPT_REPORT_NAME_H_

#include <cstdint>
#include <string>

// The files of a report.
inline constexpr char kReportXml[] = "report.xml";
inline constexpr char kReportDump[] = "crashdump.dmp";
inline constexpr char kReportPicture[] = "desktop.png";

// Appended to the name of a report that is still being written.
inline constexpr char kUnfinished[] = ".unfinished";

// "2026-11-21T12:51:04Z" of a time in 100 ns since 1601, UTC.
std::string IsoTime(uint64_t fileTime);

// "20261121T125104Z-<guid>": sorted by name is sorted by time. The GUID is in lower case, as in
// "6f9619ff-8b86-d011-b42d-00c04fc964ff".
std::string ReportName(uint64_t fileTime, const std::string& guid);

// Whether a folder of this name is a complete report.
bool IsReportName(const std::string& name);

// The text as a file name: what no file name may hold becomes "_", also blanks and dots at its end.
std::string FileNameOf(const std::string& text);

#endif  // MOSAICON_CRASHRPT_REPORT_NAME_H_
