// Tiles as JPEG and WebP files, which GDAL writes.
#ifndef MOSAICON_TILER_LOSSY_ENCODER_H_
#define MOSAICON_TILER_LOSSY_ENCODER_H_

#include <gdal_priv.h>

#include <string>
#include <string_view>

#include "tiler/memory_file.h"
#include "tiler/tile_kind.h"
#include "tiler/tile_pixels.h"

namespace tiler {

// As both libraries count, up to 100. Of photographs, JPEG files of this quality are a sixth of the exact
// ones; WebP files of theirs are about as true, and a tenth. scripts/tile-sizes measures it.
inline constexpr int kJpegQuality = 90;
inline constexpr int kWebpQuality = 85;

// Keeps its memory from tile to tile. One thread at a time, which has a handler of GDAL's errors.
class LossyEncoder {
 public:
  // kind: JPEG or WebP. colours: as of a PngEncoder.
  LossyEncoder(TileKind kind, int colours);

  // A whole file, valid until the next call; transparency is in it in WebP alone, where it is exact. The same
  // pixels always give the same bytes. Throws TilerError.
  std::string_view Encode(const Tile& tile);

 private:
  TileKind m_kind;
  int m_colours;
  MemoryFile m_file;
  std::string m_content;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_LOSSY_ENCODER_H_
