// The files of this computer. file_system_windows.cpp has the 8-bit Win32 functions behind it,
// file_system_posix.cpp those of POSIX. Holds nothing: make one wherever it is needed.
#ifndef MOSAICON_FILES_SYSTEM_FILES_H_
#define MOSAICON_FILES_SYSTEM_FILES_H_

#include "files/file_system.h"

class SystemFiles : public FileSystem {
 public:
  bool Exists(const std::string& path) override;
  bool IsFolder(const std::string& path) override;
  bool Find(const std::string& pattern, std::vector<FoundFile>& found) override;
  std::optional<std::string> Read(const std::string& path, std::size_t maxBytes) override;
  std::optional<std::uint64_t> WriteTime(const std::string& path) override;
  std::string FullPath(const std::string& path) override;
  std::string Identity(const std::string& path) override;
  bool CreateFolder(const std::string& path) override;
  bool Delete(const std::string& path) override;
  bool Rename(const std::string& source, const std::string& target) override;
  bool Copy(const std::string& source, const std::string& target) override;
};

#endif  // MOSAICON_FILES_SYSTEM_FILES_H_
