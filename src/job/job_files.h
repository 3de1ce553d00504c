// The file system as a job uses it, and the process environment that its tools inherit. Failures are
// told by the result; nothing throws.
#ifndef MOSAICON_JOB_JOB_FILES_H_
#define MOSAICON_JOB_JOB_FILES_H_

#include <optional>
#include <string>
#include <vector>

#include "files/file_system.h"

class JobFiles {
 public:
  virtual ~JobFiles() = default;
  // The path from the root on, with "\" between its components and without "." and ".."; as the system
  // understands it now, so relative to the current directory. The path itself when it has no such form.
  virtual std::string FullPath(const std::string& path) = 0;
  // The same text for all the ways to name one existing file or folder, another for any other; empty
  // when there is no such thing.
  virtual std::string Identity(const std::string& path) = 0;
  // What a file holds; nullopt when it cannot be read or has more bytes than that.
  virtual std::optional<std::string> Read(const std::string& path, size_t maxBytes) = 0;
  // True when exactly this path exists, as a file or a folder.
  virtual bool Exists(const std::string& path) = 0;
  // Everything that matches a pattern such as "d:\maps\*.tif", by the system's rules and in its order.
  virtual std::vector<FoundFile> Find(const std::string& pattern) = 0;
  // Creates one level; true also when the folder exists already.
  virtual bool CreateFolder(const std::string& path) = 0;
  virtual bool Delete(const std::string& path) = 0;
  // Fails when target exists.
  virtual bool Rename(const std::string& source, const std::string& target) = 0;
  // Replaces an existing target.
  virtual bool Copy(const std::string& source, const std::string& target) = 0;
  // RewriteKmlLinks and MakePreviewImage on real files.
  virtual bool RewriteLinks(const std::string& kml, const std::string& baseUrl,
                            const std::string& subFolder) = 0;
  virtual bool MakePreview(const std::string& orthophoto, const std::string& picture) = 0;
  // IsPreviewImage on a real file.
  virtual bool IsPreview(const std::string& path) = 0;
};

class ProcessEnvironment {
 public:
  virtual ~ProcessEnvironment() = default;
  // The value of a variable; nullopt when it is not set.
  virtual std::optional<std::string> Get(const std::string& name) = 0;
  virtual bool Set(const std::string& name, const std::string& value) = 0;
};

#endif  // MOSAICON_JOB_JOB_FILES_H_
