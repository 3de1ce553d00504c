#include "files/system_files.h"
#include "kvtools/kvtools.h"

namespace {

// The path ends in a backslash. False when the count was ended.
bool CountInFolder(const std::string& path, bool withSubfolders, const std::function<bool()>& onFolder,
                   int& count) {
  if (onFolder && !onFolder()) return false;
  std::vector<FoundFile> found;
  if (!SystemFiles().Find(path + "*.*", found)) ++count;
  for (const FoundFile& file : found) {
    if (!file.isDirectory) {
      ++count;
    } else if (withSubfolders && !CountInFolder(file.path + "\\", withSubfolders, onFolder, count)) {
      return false;
    }
  }
  return true;
}

}  // namespace

int KVT_CountFileInFolder(const std::string& path, int withSubfolders,
                          const std::function<bool()>& onFolder) {
  // Without a path the pattern would mean the current folder.
  if (path.empty()) return 0;
  const std::string folder = KVT_OptimizePath(path, 1);
  int count = 0;
  if (SystemFiles().IsFolder(folder)) CountInFolder(folder, withSubfolders != 0, onFolder, count);
  return count;
}
