// Internal to the room: what both systems do in the same way.
#ifndef MOSAICON_FILES_READ_FILE_H_
#define MOSAICON_FILES_READ_FILE_H_

#include <fstream>
#include <optional>
#include <string>

// As FileSystem::Read; path as the system writes it.
inline std::optional<std::string> ReadFileUpTo(const std::string& path, std::size_t maxBytes) {
  std::ifstream file(path, std::ios::binary);
  std::string text(maxBytes + 1, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (!file.eof()) return std::nullopt;
  text.resize(static_cast<std::size_t>(file.gcount()));
  return text;
}

#endif  // MOSAICON_FILES_READ_FILE_H_
