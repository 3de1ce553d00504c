// libFuzzer: whatever a file holds, its lines put together are the file, and the position follows what
// was returned. The first bytes choose the sizes of the buffers and when the position is asked for.
// Works in the current directory.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "net/file_data_source.h"

namespace {

constexpr size_t kChoices = 3;

void MakeFile(const char* path, const std::string& bytes) {
  std::FILE* file = std::fopen(path, "wb");
  if (file == nullptr) std::abort();
  if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) std::abort();
  std::fclose(file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < kChoices) return 0;
  const char* const path = "lines.txt";
  const std::string bytes(data + kChoices, data + size);
  MakeFile(path, bytes);
  CUT_FileDataSource source(path, data[0] + 2);
  if (source.Open(kSourceRead) != 0) std::abort();

  std::vector<char> buffer(data[1] + size_t{2});
  std::string together;
  for (unsigned turn = 0;; ++turn) {
    const int count = source.ReadLine(buffer.data(), buffer.size());
    if (count < 0 || static_cast<size_t>(count) >= buffer.size()) __builtin_trap();
    if (buffer[static_cast<size_t>(count)] != '\0') __builtin_trap();
    if (count == 0) break;
    together.append(buffer.data(), static_cast<size_t>(count));
    const bool asks = (data[2] >> (turn % 8) & 1) != 0;
    if (asks && source.Seek(0, kSeekCurrent) != static_cast<long>(together.size())) __builtin_trap();
  }
  if (together != bytes) __builtin_trap();

  // The first occurrence, unless it is all that is left.
  const std::string wanted = bytes.substr(bytes.size() / 2, 5);
  if (wanted.empty() || wanted.find('\0') != std::string::npos) return 0;
  const size_t place = bytes.find(wanted);
  const long expected = bytes.size() > wanted.size() ? static_cast<long>(place) : -1;
  if (source.Find(wanted.c_str(), 0, 1, 0) != expected) __builtin_trap();
  return 0;
}
