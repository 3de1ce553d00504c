// The local side of publishing: the folders of this computer. Paths have backslashes. Failures are told
// by the result.
#ifndef MOSAICON_PUBLISH_LOCAL_FOLDERS_H_
#define MOSAICON_PUBLISH_LOCAL_FOLDERS_H_

#include <functional>
#include <string>
#include <vector>

#include "kvtools/found_files.h"

class LocalFolders {
 public:
  virtual ~LocalFolders() = default;
  virtual bool FolderExists(const std::string& path) = 0;
  // The files in a folder and in all folders below it; a folder that cannot be read counts as one file, so
  // that nobody takes it for one without files. onFolder is called before each folder is read; false ends
  // the count.
  virtual int CountFiles(const std::string& path, const std::function<bool()>& onFolder) = 0;
  // Everything in a folder, in the order of the file system; "." and ".." may be among it.
  virtual std::vector<FoundFile> List(const std::string& path) = 0;
};

#endif  // MOSAICON_PUBLISH_LOCAL_FOLDERS_H_
