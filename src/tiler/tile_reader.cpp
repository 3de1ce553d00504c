#include "tiler/tile_reader.h"

#include <vector>

#include "tiler/exact_tile.h"
#include "tiler/map_positions.h"
#include "tiler/source_pixels.h"
#include "tiler/tiler_error.h"
#include "tiler/window_reader.h"

namespace tiler {

namespace {

// As gdal2tiles makes them.
class QueryReader : public TileReader {
 public:
  QueryReader(const MapView& view, const Pyramid& pyramid, RunLog& log)
      : m_pyramid(pyramid),
        m_image(view.image),
        m_reader(view.direct ? MakeDirectReader(view, log) : MakeVirtualReader(view, log)) {}

  Tile Read(const TileId& tile) override {
    const TileQuery query = m_pyramid.QueryOf(tile);
    // Outside of the image.
    if (query.width == 0 || query.height == 0 || query.queryWidth == 0 || query.queryHeight == 0) {
      return Tile(kTilePixels);
    }
    m_reader->Read({query.x, query.y, static_cast<int>(query.width), static_cast<int>(query.height)},
                   m_window);
    return AveragedTile(m_window, query.width, ColumnsOf(query, m_image.width),
                        RowsOf(query, m_image.height));
  }

 private:
  const Pyramid& m_pyramid;
  MapImage m_image;
  std::unique_ptr<WindowReader> m_reader;
  std::vector<Pixel> m_window;
};

class ExactReader : public TileReader {
 public:
  ExactReader(const ExactWarp& warp, RunLog& log)
      : m_resampling(warp.resampling),
        m_source(warp.pixels, log),
        m_positions(m_source.Image(), warp.srs, {0, 1, 0, 0, 0, 1}) {}

  Tile Read(const TileId& tile) override {
    const std::vector<PositionCell> cells = PositionCellsOf(
        tile, [this](std::vector<double>& xs, std::vector<double>& ys) { m_positions.Ask(xs, ys); });
    const PixelWindow window = SourceOf(cells, m_resampling, m_source.Width(), m_source.Height());
    m_source.Read(window, m_pixels);
    return ExactTile(cells, m_resampling, window, m_pixels);
  }

 private:
  Resampling m_resampling;
  SourcePixels m_source;
  MapPositions m_positions;
  std::vector<Pixel> m_pixels;
};

// Tells failures of reading from others.
class CheckedReader : public TileReader {
 public:
  explicit CheckedReader(std::unique_ptr<TileReader> reader) : m_reader(std::move(reader)) {}

  Tile Read(const TileId& tile) override {
    try {
      return m_reader->Read(tile);
    } catch (const TilerError& failure) {
      throw NotRead(failure.what());
    }
  }

 private:
  std::unique_ptr<TileReader> m_reader;
};

}  // namespace

std::unique_ptr<TileReader> MakeTileReader(const MapView& view, const Pyramid& pyramid, RunLog& log) {
  std::unique_ptr<TileReader> reader;
  if (view.exact) {
    reader = std::make_unique<ExactReader>(*view.exact, log);
  } else {
    reader = std::make_unique<QueryReader>(view, pyramid, log);
  }
  return std::make_unique<CheckedReader>(std::move(reader));
}

}  // namespace tiler
