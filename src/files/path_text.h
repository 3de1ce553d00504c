// Paths as texts in UTF-8, on every system. Portable.
#ifndef MOSAICON_FILES_PATH_TEXT_H_
#define MOSAICON_FILES_PATH_TEXT_H_

#include <filesystem>
#include <string>

namespace files {

inline std::filesystem::path PathOf(const std::string& utf8) {
  return {std::u8string(utf8.begin(), utf8.end())};
}

inline std::string Utf8Of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

}  // namespace files

#endif  // MOSAICON_FILES_PATH_TEXT_H_
