#include "publish/windows_folders.h"

#include <windows.h>

#include "kvtools/kvtools.h"

bool WindowsFolders::FolderExists(const std::string& path) {
  const DWORD attributes = GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

int WindowsFolders::CountFiles(const std::string& path, const std::function<bool()>& onFolder) {
  return KVT_CountFileInFolder(path, 1, onFolder);
}

std::vector<FoundFile> WindowsFolders::List(const std::string& path) {
  std::vector<FoundFile> found;
  FindFiles(path + "\\*.*", found);
  return found;
}
