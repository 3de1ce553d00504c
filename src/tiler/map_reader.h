// Reads pixels of the image as the map shows it.
#ifndef MOSAICON_TILER_MAP_READER_H_
#define MOSAICON_TILER_MAP_READER_H_

#include <memory>
#include <vector>

#include "tiler/map_view.h"
#include "tiler/tile_pixels.h"
#include "tiler/window_reader.h"

namespace tiler {

// The tiles of the finest level. One thread at a time: each has a reader of its own.
class MapReader {
 public:
  // Throws TilerError, like all of it.
  MapReader(const MapView& view, RunLog& log);

  // Throws NotRead.
  Tile Read(const TileQuery& query);

 private:
  MapImage m_image;
  std::unique_ptr<WindowReader> m_reader;
  std::vector<Pixel> m_window;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_READER_H_
