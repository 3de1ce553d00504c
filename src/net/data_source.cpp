#include "net/data_source.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace {

constexpr size_t kFindChunk = 4095;

// What the "C" locale of the program does, whatever the user's.
void MakeUpperCase(char* text, size_t count) {
  std::transform(text, text + count, text,
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
}

}  // namespace

long CUT_DataSource::Find(const char* text, long start, int caseSensitive, size_t maxRange) {
  const size_t length = text == nullptr ? 0 : strnlen(text, kFindChunk + 1);
  if (length == 0 || length > kFindChunk || (maxRange != 0 && maxRange < length)) return -1;
  std::string wanted(text, length);
  if (caseSensitive == 0) MakeUpperCase(wanted.data(), length);

  std::array<char, kFindChunk> chunk{};
  // Chunks overlap by the length of the text, so that none across a border is missed.
  std::int64_t chunkStart = start;
  for (;;) {
    if (!std::in_range<std::int32_t>(chunkStart)) return -1;
    if (Seek(static_cast<long>(chunkStart), kSeekBegin) == -1) return -1;
    const int count = Read(chunk.data(), chunk.size());
    if (count < 0 || static_cast<size_t>(count) <= length) return -1;
    if (caseSensitive == 0) MakeUpperCase(chunk.data(), static_cast<size_t>(count));
    const size_t place = std::string_view(chunk.data(), static_cast<size_t>(count)).find(wanted);
    const bool found = place != std::string_view::npos;
    chunkStart += static_cast<std::int64_t>(found ? place : static_cast<size_t>(count) - length);
    if (maxRange != 0 && static_cast<std::uint64_t>(chunkStart - start) > maxRange) return -1;
    if (found) return std::in_range<std::int32_t>(chunkStart) ? static_cast<long>(chunkStart) : -1;
  }
}
