// Copies a text into a caller's buffer of fixed size. Shared by the profile stores. Portable.
#ifndef MOSAICON_KVTOOLS_COPY_BOUNDED_H_
#define MOSAICON_KVTOOLS_COPY_BOUNDED_H_

#include <algorithm>
#include <cstring>
#include <string_view>

// Writes as much of text as fits before the terminator; returns the number of characters written.
inline int CopyBounded(std::string_view text, char* buffer, int size) {
  if (buffer == nullptr || size <= 0) return 0;
  const size_t count = std::min(text.size(), static_cast<size_t>(size) - 1);
  std::memcpy(buffer, text.data(), count);
  buffer[count] = '\0';
  return static_cast<int>(count);
}

#endif  // MOSAICON_KVTOOLS_COPY_BOUNDED_H_
