// The file system and the environment of the process, by the 8-bit Win32 functions.
#ifndef MOSAICON_JOB_WINDOWS_FILES_H_
#define MOSAICON_JOB_WINDOWS_FILES_H_

#include "job/job_files.h"

class WindowsFiles : public JobFiles {
 public:
  std::string FullPath(const std::string& path) override;
  std::string Identity(const std::string& path) override;
  std::optional<std::string> Read(const std::string& path, size_t maxBytes) override;
  bool Exists(const std::string& path) override;
  std::optional<uint64_t> WriteTime(const std::string& path) override;
  std::vector<FoundFile> Find(const std::string& pattern) override;
  bool CreateFolder(const std::string& path) override;
  bool Delete(const std::string& path) override;
  bool Rename(const std::string& source, const std::string& target) override;
  bool Copy(const std::string& source, const std::string& target) override;
  bool RewriteLinks(const std::string& kml, const std::string& baseUrl,
                    const std::string& subFolder) override;
  bool MakePreview(const std::string& orthophoto, const std::string& picture, std::string& reason) override;
  bool IsPreview(const std::string& path) override;
};

class WindowsEnvironment : public ProcessEnvironment {
 public:
  std::optional<std::string> Get(const std::string& name) override;
  bool Set(const std::string& name, const std::string& value) override;
};

// Full path of the running executable.
std::string GetProgramPath();

#endif  // MOSAICON_JOB_WINDOWS_FILES_H_
