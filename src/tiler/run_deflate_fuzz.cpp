// libFuzzer: zlib makes of a compressed stream what was compressed. The first two bytes say how often the
// others are repeated, because one code is for more bytes than the fuzzer likes to try.
#include <zlib.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tiler/run_deflate.h"

namespace {

constexpr size_t kChoices = 2;
constexpr size_t kMostBytes = 100000;

void Check(const std::vector<uint8_t>& bytes) {
  std::string stream;
  tiler::RunDeflater().Compress(bytes, stream);
  std::vector<uint8_t> back(bytes.size() + 1);
  uLongf size = back.size();
  const auto* begin = reinterpret_cast<const Bytef*>(stream.data());
  if (uncompress(back.data(), &size, begin, stream.size()) != Z_OK) __builtin_trap();
  back.resize(size);
  if (back != bytes) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < kChoices) return 0;
  const std::vector<uint8_t> once(data + kChoices, data + size);
  const size_t most = kMostBytes / (once.size() + 1);
  const size_t times = std::min<size_t>(most, data[0] + (data[1] == 255 ? size_t{256} : 1));
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < times; ++i) bytes.insert(bytes.end(), once.begin(), once.end());
  Check(bytes);
  return 0;
}
