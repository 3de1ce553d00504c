// Tiles as PNG files. Portable.
#ifndef MOSAICON_TILER_PNG_TILE_H_
#define MOSAICON_TILER_PNG_TILE_H_

#include <memory>
#include <string>
#include <vector>

#include "tiler/run_deflate.h"
#include "tiler/tile_pixels.h"

struct libdeflate_compressor;

namespace tiler {

// Keeps its memory from tile to tile. One thread at a time.
class PngEncoder {
 public:
  // colours: 3, or 1 for tiles whose pixels all have equal red, green and blue, which are written as grey.
  // Throws std::bad_alloc.
  explicit PngEncoder(int colours);
  ~PngEncoder();
  PngEncoder(const PngEncoder&) = delete;
  PngEncoder& operator=(const PngEncoder&) = delete;

  // A whole file, valid until the next call. A tile without transparency has no alpha channel in it. The same
  // pixels always give the same bytes.
  std::string_view Encode(const Tile& tile);

 private:
  struct Deleter {
    void operator()(libdeflate_compressor* compressor) const;
  };

  void TakeSamples(const Tile& tile, int channels);
  void Filter(int channels);
  // What was filtered, as a zlib stream.
  void Compress();

  int m_colours;
  std::unique_ptr<libdeflate_compressor, Deleter> m_compressor;
  std::vector<std::uint8_t> m_samples;   // rows, without filter bytes
  std::vector<std::uint8_t> m_filtered;  // rows, each behind its filter byte
  RunDeflater m_runs;
  std::string m_stream;
  std::string m_other;  // the stream of the other way
  std::string m_file;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_PNG_TILE_H_
