// The folders of this computer. Win32; any thread.
#ifndef MOSAICON_PUBLISH_WINDOWS_FOLDERS_H_
#define MOSAICON_PUBLISH_WINDOWS_FOLDERS_H_

#include "publish/local_folders.h"

class WindowsFolders : public LocalFolders {
 public:
  bool FolderExists(const std::string& path) override;
  int CountFiles(const std::string& path, const std::function<bool()>& onFolder) override;
  std::vector<FoundFile> List(const std::string& path) override;
};

#endif  // MOSAICON_PUBLISH_WINDOWS_FOLDERS_H_
