#include "job/dropped_files.h"

#include <algorithm>
#include <set>

#include "job/input_list.h"

namespace {

constexpr UINT kAllFiles = 0xFFFFFFFF;

// Collects paths; whatever the case of its letters, each once.
class PathList {
 public:
  void Add(const std::string& path) {
    std::string key = path;
    CharLowerBuffA(key.data(), static_cast<DWORD>(key.size()));
    if (m_keys.insert(key).second) m_paths.push_back(path);
  }
  const std::vector<std::string>& Paths() const { return m_paths; }

 private:
  std::vector<std::string> m_paths;
  std::set<std::string> m_keys;
};

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

std::vector<std::string> ListDroppedFiles(FileSystem& files, const std::vector<std::string>& paths) {
  PathList list;
  for (const std::string& path : paths) {
    if (files.IsFolder(path)) {
      for (const std::string& file : FindOrthophotos(files, path)) list.Add(file);
    } else {
      list.Add(path);
    }
  }
  return list.Paths();
}
