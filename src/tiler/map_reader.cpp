#include "tiler/map_reader.h"

#include "tiler/tiler_error.h"

namespace tiler {

MapReader::MapReader(const MapView& view, RunLog& log)
    : m_image(view.image),
      m_reader(view.direct ? MakeDirectReader(view, log) : MakeVirtualReader(view, log)) {}

Tile MapReader::Read(const TileQuery& query) {
  // Outside of the image.
  if (query.width == 0 || query.height == 0 || query.queryWidth == 0 || query.queryHeight == 0) {
    return Tile(kTilePixels);
  }
  try {
    m_reader->Read({query.x, query.y, static_cast<int>(query.width), static_cast<int>(query.height)},
                   m_window);
  } catch (const TilerError& failure) {
    throw NotRead(failure.what());
  }
  return AveragedTile(m_window, query.width, ColumnsOf(query, m_image.width), RowsOf(query, m_image.height));
}

}  // namespace tiler
