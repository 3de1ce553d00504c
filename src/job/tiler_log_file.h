// The log of the tiling script for the jobs of this process: the script is told by the environment to write
// there, so that no other process adds to it. Removed at the end unless somebody wants to read it.
// Portable; talks to the system through the interfaces given.
#ifndef MOSAICON_JOB_TILER_LOG_FILE_H_
#define MOSAICON_JOB_TILER_LOG_FILE_H_

#include <string>

#include "files/file_system.h"
#include "job/process_environment.h"

class TilerLogFile {
 public:
  // Named after the program. Process ids come again, also after a log that was kept: the name has the time
  // too.
  TilerLogFile(FileSystem& files, ProcessEnvironment& environment, const std::string& program,
               unsigned long processId);
  ~TilerLogFile();
  TilerLogFile(const TilerLogFile&) = delete;
  TilerLogFile& operator=(const TilerLogFile&) = delete;

  const std::string& Path() const { return m_strPath; }

  // The path, and the file outlives this process; empty when the script has written nothing.
  std::string Keep();

 private:
  FileSystem& m_files;
  std::string m_strPath;
  bool m_bKeep = false;
};

#endif  // MOSAICON_JOB_TILER_LOG_FILE_H_
