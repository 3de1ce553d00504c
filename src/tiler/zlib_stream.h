// What PNG files are made of besides pixels: zlib streams and checksums. By ISA-L.
#ifndef MOSAICON_TILER_ZLIB_STREAM_H_
#define MOSAICON_TILER_ZLIB_STREAM_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tiler {

// That of PNG files, of everything so far and these bytes. before: of what came before them; of nothing it
// is 0. Any thread.
std::uint32_t Crc32(std::uint32_t before, std::string_view bytes);

// Keeps its memory from stream to stream. One thread at a time.
class ZlibCompressor {
 public:
  ZlibCompressor();

  // bytes: at most 2 GiB. The same bytes always give the same stream on the same computer.
  void Compress(const std::vector<std::uint8_t>& bytes, std::string& stream);

 private:
  std::vector<std::uint8_t> m_forLibrary;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_ZLIB_STREAM_H_
