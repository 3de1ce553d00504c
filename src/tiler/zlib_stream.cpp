#include "tiler/zlib_stream.h"

#include <immintrin.h>
#include <isa-l.h>

#include <stdexcept>

namespace tiler {

namespace {

// Filtered photographs hold hardly any repetition: the best level makes them one per cent smaller.
constexpr std::uint32_t kLevel = 1;
constexpr std::uint32_t kLevelMemory = ISAL_DEF_LVL1_DEFAULT;

// What does not become smaller is stored, 65,535 bytes at a time with five more in front of them, between the
// six of zlib.
std::size_t LargestStream(std::size_t size) {
  constexpr std::size_t kSpare = 1024;
  return size + size / 65535 * 5 + kSpare;
}

// The library (2.30) leaves the upper halves of the vector registers in use. As long as they are, all
// instructions that know the lower halves alone take several times as long, in whatever code comes next.
__attribute__((target("avx"))) void ClearUpperHalves() {
  _mm256_zeroupper();
}

class AfterLibrary {
 public:
  AfterLibrary() = default;
  ~AfterLibrary() {
    if (__builtin_cpu_supports("avx")) ClearUpperHalves();
  }
  AfterLibrary(const AfterLibrary&) = delete;
  AfterLibrary& operator=(const AfterLibrary&) = delete;
};

}  // namespace

std::uint32_t Crc32(std::uint32_t before, std::string_view bytes) {
  const AfterLibrary after;
  return crc32_gzip_refl(before, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

ZlibCompressor::ZlibCompressor() : m_forLibrary(kLevelMemory) {}

void ZlibCompressor::Compress(const std::vector<std::uint8_t>& bytes, std::string& stream) {
  const AfterLibrary after;
  stream.resize(LargestStream(bytes.size()));
  isal_zstream state;
  isal_deflate_stateless_init(&state);
  state.gzip_flag = IGZIP_ZLIB;
  state.level = kLevel;
  state.level_buf = m_forLibrary.data();
  state.level_buf_size = kLevelMemory;
  state.end_of_stream = 1;
  state.next_in = const_cast<std::uint8_t*>(bytes.data());  // it is read only
  state.avail_in = static_cast<std::uint32_t>(bytes.size());
  state.next_out = reinterpret_cast<std::uint8_t*>(stream.data());
  state.avail_out = static_cast<std::uint32_t>(stream.size());
  if (isal_deflate_stateless(&state) != COMP_OK) throw std::logic_error("a tile was not compressed");
  stream.resize(state.total_out);
}

}  // namespace tiler
