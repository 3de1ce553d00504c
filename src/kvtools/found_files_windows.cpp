#include <windows.h>

#include <memory>

#include "kvtools/found_files.h"
#include "kvtools/split_path.h"

namespace {

struct FindCloser {
  void operator()(HANDLE search) const { FindClose(search); }
};
using Search = std::unique_ptr<void, FindCloser>;

}  // namespace

bool FindFiles(const std::string& pattern, std::vector<FoundFile>& found) {
  found.clear();
  WIN32_FIND_DATAA data;
  const HANDLE handle = FindFirstFileA(pattern.c_str(), &data);
  if (handle == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND;
  const Search search(handle);
  const PathParts parts = SplitPath(pattern);
  do {
    FoundFile file;
    file.name = data.cFileName;
    file.path = parts.drive + parts.directory + file.name;
    file.isDirectory = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    found.push_back(file);
  } while (FindNextFileA(search.get(), &data));
  return GetLastError() == ERROR_NO_MORE_FILES;
}

bool IsFolder(const std::string& path) {
  const DWORD attributes = GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}
