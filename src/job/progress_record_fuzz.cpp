// libFuzzer: any chunk gives a number. Several chunks go through one buffer that is neither cleared
// nor terminated between them, as in the runner.

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "job/progress_record.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  char buffer[kProgressChunk] = {};
  while (size > 0) {
    const size_t count = std::min<size_t>({size, sizeof buffer, 1 + data[0] * 17U});
    std::memcpy(buffer, data, count);
    const int percent = ParseProgressChunk(buffer);
    const char* first = static_cast<const char*>(std::memchr(buffer, ' ', strnlen(buffer, sizeof buffer)));
    if (first == nullptr && percent != 0) __builtin_trap();
    data += count;
    size -= count;
  }
  return 0;
}
