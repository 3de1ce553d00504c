// Tiles as PNG files. Portable.
#ifndef MOSAICON_TILER_PNG_TILE_H_
#define MOSAICON_TILER_PNG_TILE_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tiler/tile_pixels.h"
#include "tiler/zlib_stream.h"

namespace tiler {

// Keeps its memory from tile to tile. One thread at a time.
class PngEncoder {
 public:
  // colours: 3, or 1 for tiles whose pixels all have equal red, green and blue, which are written as grey.
  explicit PngEncoder(int colours);

  // A whole file, valid until the next call. A tile without transparency has no alpha channel in it. The same
  // pixels always give the same bytes.
  std::string_view Encode(const Tile& tile);

 private:
  void TakeSamples(const Tile& tile, int channels);
  void Filter(int channels);

  int m_colours;
  std::vector<std::uint8_t> m_samples;   // rows, without filter bytes
  std::vector<std::uint8_t> m_filtered;  // rows, each behind its filter byte
  ZlibCompressor m_compressor;
  std::string m_stream;
  std::string m_file;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_PNG_TILE_H_
