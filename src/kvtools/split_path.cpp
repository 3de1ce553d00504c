#include "kvtools/split_path.h"

namespace {

constexpr char kSeparators[] = "\\/";

bool EndsInSeparator(const std::string& text) {
  return !text.empty() && (text.back() == '\\' || text.back() == '/');
}

}  // namespace

PathParts SplitPath(const std::string& path) {
  PathParts parts;
  std::string rest = path;
  if (rest.size() >= 2 && rest[1] == ':') {
    parts.drive = rest.substr(0, 2);
    rest.erase(0, 2);
  }
  const size_t separator = rest.find_last_of(kSeparators);
  if (separator != std::string::npos) {
    parts.directory = rest.substr(0, separator + 1);
    rest.erase(0, separator + 1);
  }
  const size_t dot = rest.rfind('.');
  if (dot != std::string::npos) {
    parts.extension = rest.substr(dot);
    rest.erase(dot);
  }
  parts.name = rest;
  return parts;
}

std::string JoinPath(const std::string& drive, const std::string& directory, const std::string& name,
                     const std::string& extension) {
  std::string path = drive.substr(0, 1);
  if (!path.empty()) path += ':';
  path += directory;
  if (!directory.empty() && !EndsInSeparator(directory)) path += '\\';
  path += name;
  if (!extension.empty() && extension[0] != '.') path += '.';
  path += extension;
  return path;
}
