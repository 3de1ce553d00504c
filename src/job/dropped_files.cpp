#include "job/dropped_files.h"

#include <algorithm>

#include "job/windows_files.h"

namespace {

constexpr UINT kAllFiles = 0xFFFFFFFF;

void Append(const std::string& path, std::string& list) {
  if (!list.empty()) list += '|';
  list += path;
}

}  // namespace

std::vector<std::string> TakeDroppedFiles(HDROP drop) {
  std::vector<std::string> paths(DragQueryFileA(drop, kAllFiles, nullptr, 0));
  for (UINT i = 0; i < paths.size(); ++i) {
    paths[i].resize(DragQueryFileA(drop, i, nullptr, 0) + 1U);
    paths[i].resize(DragQueryFileA(drop, i, paths[i].data(), static_cast<UINT>(paths[i].size())));
  }
  DragFinish(drop);
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::string JoinInputList(const std::vector<std::string>& paths) {
  std::string list;
  WindowsFiles files;
  for (const std::string& path : paths) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
      Append(path, list);
      continue;
    }
    for (const FoundFile& file : files.Find(path + "\\*.tif")) {
      if (!file.isDirectory) Append(file.path, list);
    }
  }
  return list;
}
