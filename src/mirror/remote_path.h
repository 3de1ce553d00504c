// Paths below the folder of a store: UTF-8, "/" between names, "" for the folder itself. Any thread.
#ifndef MOSAICON_MIRROR_REMOTE_PATH_H_
#define MOSAICON_MIRROR_REMOTE_PATH_H_

#include <algorithm>
#include <cstddef>
#include <string>

namespace mirror {

inline std::string ParentOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash);
}

// How many folders it lies in.
inline std::ptrdiff_t DepthOf(const std::string& path) {
  return std::count(path.begin(), path.end(), '/');
}

// Whether its name, or that of a folder that it lies in, begins with a dot.
inline bool IsHidden(const std::string& path) {
  return path.starts_with('.') || path.find("/.") != std::string::npos;
}

}  // namespace mirror

#endif  // MOSAICON_MIRROR_REMOTE_PATH_H_
