#include "kvtools/found_files.h"
#include "kvtools/kvtools.h"

int KVT_CountFileInFolder(const std::string& path, int withSubfolders) {
  // Without a path the pattern would mean the current folder.
  if (path.empty()) return 0;
  std::vector<FoundFile> found;
  FindFiles(KVT_OptimizePath(path, 1) + "*.*", found);
  int count = 0;
  for (const FoundFile& file : found) {
    if (!file.isDirectory) {
      ++count;
    } else if (withSubfolders != 0 && file.name != "." && file.name != "..") {
      count += KVT_CountFileInFolder(file.path, withSubfolders);
    }
  }
  return count;
}
