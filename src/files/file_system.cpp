#include "files/file_system.h"

std::vector<FoundFile> FindFiles(FileSystem& files, const std::string& pattern) {
  std::vector<FoundFile> found;
  files.Find(pattern, found);
  return found;
}

bool IsSameFile(FileSystem& files, const std::string& left, const std::string& right) {
  const std::string identity = files.Identity(left);
  return !identity.empty() && identity == files.Identity(right);
}
