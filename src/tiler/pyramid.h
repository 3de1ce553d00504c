// Which tiles an image gets, and which of its pixels each one shows: all in whole numbers, decided before the
// first pixel is read. As gdal2tiles decides it. Portable, no state.
#ifndef MOSAICON_TILER_PYRAMID_H_
#define MOSAICON_TILER_PYRAMID_H_

#include <cstdint>
#include <vector>

#include "tiler/mercator.h"

namespace tiler {

// An image in the map's projection, without rotation.
struct MapImage {
  std::int32_t width = 0;   // pixels
  std::int32_t height = 0;  // pixels
  double left = 0;          // metres, of its left edge
  double top = 0;           // metres, of its upper edge
  double pixelWidth = 0;    // metres, above 0
  double pixelHeight = 0;   // metres, below 0: rows go south
};

// The tiles of a level, from the first to the last.
struct TileRange {
  int west = 0;
  int south = 0;
  int east = 0;
  int north = 0;

  std::int64_t Columns() const { return std::int64_t{east} - west + 1; }
  std::int64_t Rows() const { return std::int64_t{north} - south + 1; }
  std::int64_t Count() const { return Columns() * Rows(); }
};

// What is read for a tile of the finest level: a window of the image's pixels, as large as pixels of the
// query, which is a square of kQuerySize pixels that is the tile four times enlarged. Any of the sizes may be
// 0: the tile is transparent then.
inline constexpr int kQuerySize = 4 * kTileSize;
struct TileQuery {
  std::int64_t x = 0;  // of the image's window
  std::int64_t y = 0;
  std::int64_t width = 0;
  std::int64_t height = 0;
  std::int64_t queryX = 0;  // where it lies in the query
  std::int64_t queryY = 0;
  std::int64_t queryWidth = 0;
  std::int64_t queryHeight = 0;
};

class Pyramid {
 public:
  explicit Pyramid(const MapImage& image);

  int Coarsest() const { return m_coarsest; }
  int Finest() const { return m_finest; }
  // The tiles of a level from Coarsest() to Finest().
  const TileRange& Range(int level) const { return m_ranges[static_cast<std::size_t>(level)]; }
  // Of all levels.
  std::int64_t TileCount() const;

  // Where the image lies, in metres. Its southern edge is reckoned with the width of a pixel.
  const Bounds& Metres() const { return m_metres; }
  // The same in degrees, no further than the map reaches.
  Bounds Degrees() const;

  // For a tile of the finest level.
  TileQuery QueryOf(const TileId& tile) const;

 private:
  MapImage m_image;
  Bounds m_metres;
  std::vector<TileRange> m_ranges;  // by level
  int m_coarsest;
  int m_finest;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_PYRAMID_H_
