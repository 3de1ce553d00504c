// Makes tiles of the finest level from the image.
#ifndef MOSAICON_TILER_TILE_READER_H_
#define MOSAICON_TILER_TILE_READER_H_

#include <memory>

#include "tiler/map_view.h"
#include "tiler/tile_pixels.h"

namespace tiler {

class RunLog;

// One thread at a time: each has a reader of its own.
class TileReader {
 public:
  virtual ~TileReader() = default;

  // Throws NotRead.
  virtual Tile Read(const TileId& tile) = 0;
};

// As the view says. Both have to live as long. Throws TilerError.
std::unique_ptr<TileReader> MakeTileReader(const MapView& view, const Pyramid& pyramid, RunLog& log);

}  // namespace tiler

#endif  // MOSAICON_TILER_TILE_READER_H_
