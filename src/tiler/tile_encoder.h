// Tiles as the files of a map.
#ifndef MOSAICON_TILER_TILE_ENCODER_H_
#define MOSAICON_TILER_TILE_ENCODER_H_

#include <optional>
#include <string_view>

#include "tiler/lossy_encoder.h"
#include "tiler/png_tile.h"
#include "tiler/tile_kind.h"

namespace tiler {

struct EncodedTile {
  TileKind kind = TileKind::kPng;
  std::string_view content;  // a whole file
};

// One thread at a time, which has a handler of GDAL's errors.
class TileEncoder {
 public:
  // colours: as of a PngEncoder.
  TileEncoder(TileFormat format, int colours);

  // Valid until the next call. Throws TilerError, std::bad_alloc.
  EncodedTile Encode(const Tile& tile);

 private:
  TileFormat m_format;
  PngEncoder m_exact;
  std::optional<LossyEncoder> m_small;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_TILE_ENCODER_H_
