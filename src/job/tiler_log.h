// Reads what a run of the tiling script adds to its log. Portable.
#ifndef MOSAICON_JOB_TILER_LOG_H_
#define MOSAICON_JOB_TILER_LOG_H_

#include <ios>
#include <string>

// The last line of text that tells the result of a run, "RESULT OK" or "RESULT FAILED <reason>", without its
// end; empty when there is none: the script never started or was killed.
std::string FindResultLine(const std::string& text);

// Made before a run; what is in the file by then belongs to others.
class TilerLog {
 public:
  // The file need not exist.
  explicit TilerLog(const std::string& path);

  // The result line of what was added since, in the ANSI code page (the script writes UTF-8).
  std::string ReadResultLine() const;

 private:
  const std::string m_strPath;
  const std::streamoff m_nSize;
};

#endif  // MOSAICON_JOB_TILER_LOG_H_
