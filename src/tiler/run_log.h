// The log of a run, for who wants to know what went wrong and for the program that started the run: the last
// line is its result.
#ifndef MOSAICON_TILER_RUN_LOG_H_
#define MOSAICON_TILER_RUN_LOG_H_

#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>

namespace tiler {

// Appends to a file, line by line, in UTF-8. A log that cannot be opened or written never stops a run; its
// text is lost then. Any thread.
class RunLog {
 public:
  // In MOSAICON_TILER_LOG when that is set, else gdal2tiles.log in
  //   <LOCALAPPDATA>/Mosaicon/Logs, or where there is no such thing
  //   ${XDG_STATE_HOME:-~/.local/state}/mosaicon
  // The one in the standard place is moved to <name>.old when it has grown past 1 MiB; a log that the caller
  // named is the caller's to keep short.
  RunLog();
  // In this file; empty: nowhere.
  explicit RunLog(const std::filesystem::path& path);

  const std::filesystem::path& Path() const { return m_path; }

  // One line; line breaks in it become blanks.
  void Line(const std::string& text);

 private:
  std::filesystem::path m_path;
  std::mutex m_mutex;
  std::ofstream m_file;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_RUN_LOG_H_
