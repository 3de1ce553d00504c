// Reads the version resource of the running program. In wide text up to the result: the program may
// lie under a path that the ANSI code page cannot express.

#include <windows.h>

#include <cwchar>
#include <string>
#include <vector>

#include "files/wide_text.h"
#include "kvtools/copy_bounded.h"
#include "kvtools/kvtools.h"
#include "kvtools/system_text.h"

namespace {

constexpr DWORD kLongestPath = 32768;

struct Translation {
  WORD language;
  WORD codePage;
};

// Empty when the program has no version resource.
std::vector<char> LoadVersionResource() {
  std::vector<wchar_t> path(kLongestPath);
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), kLongestPath);
  if (length == 0 || length == kLongestPath) return {};
  DWORD ignored = 0;
  std::vector<char> resource(GetFileVersionInfoSizeW(path.data(), &ignored));
  if (resource.empty()) return {};
  if (!GetFileVersionInfoW(path.data(), 0, static_cast<DWORD>(resource.size()), resource.data())) return {};
  return resource;
}

std::string FileVersion(const std::vector<char>& resource) {
  void* found = nullptr;
  UINT size = 0;
  if (resource.empty() || !VerQueryValueW(resource.data(), L"\\VarFileInfo\\Translation", &found, &size) ||
      size < sizeof(Translation)) {
    return {};
  }
  const Translation first = *static_cast<const Translation*>(found);
  const std::string path = FileVersionPath(first.language, first.codePage);
  if (!VerQueryValueW(resource.data(), std::wstring(path.begin(), path.end()).c_str(), &found, &size)) {
    return {};
  }
  // Not every resource compiler counts or writes the terminator.
  const auto* text = static_cast<const wchar_t*>(found);
  return AnsiFromWide(std::wstring(text, wcsnlen(text, size)));
}

}  // namespace

int KVT_GetVersionInfo(char* buffer, int size) {
  return CopyBounded(FileVersion(LoadVersionResource()), buffer, size);
}
