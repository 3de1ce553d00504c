#include <algorithm>

#include "kvtools/kvtools.h"
#include "kvtools/split_path.h"

std::string KVT_TranslatePath(const std::string& path, const char* folder, const char* extension,
                              const char* suffix) {
  PathParts parts = SplitPath(path);
  if (folder != nullptr) {
    const PathParts target = SplitPath(KVT_OptimizePath(folder, 1));
    parts.drive = target.drive;
    parts.directory = target.directory;
  }
  if (suffix != nullptr) parts.name += suffix;
  if (extension != nullptr) parts.extension = extension;
  return JoinPath(parts.drive, parts.directory, parts.name, parts.extension);
}

std::string KVT_OptimizePath(const std::string& path, int flag) {
  std::string text = path;
  std::replace(text.begin(), text.end(), '/', '\\');
  const size_t kept = text.compare(0, 2, "\\\\") == 0 ? 2 : 0;
  std::string result = text.substr(0, kept);
  for (size_t i = kept; i < text.size(); ++i) {
    const bool repeated = text[i] == '\\' && !result.empty() && result.back() == '\\';
    if (!repeated) result += text[i];
  }
  if (result.empty()) return result;

  const bool driveRoot = result.size() == 3 && result[1] == ':';
  if (flag == 1) {
    if (result.back() != '\\') result += '\\';
  } else if (result.back() == '\\' && !driveRoot && result.size() > 1) {
    result.pop_back();
  }
  return result;
}
