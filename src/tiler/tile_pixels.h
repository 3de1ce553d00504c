// The pixels of tiles: from a window of the image, and from the four finer tiles that a tile stands for. As
// gdal2tiles computes them; colours are not weighted by transparency there, nor here. Portable, no state.
#ifndef MOSAICON_TILER_TILE_PIXELS_H_
#define MOSAICON_TILER_TILE_PIXELS_H_

#include <array>
#include <cstdint>
#include <vector>

#include "tiler/pyramid.h"

namespace tiler {

// Red, green, blue and alpha, 0 (transparent) to 255.
struct Pixel {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  std::uint8_t alpha = 0;

  bool operator==(const Pixel&) const = default;
};

// Rows from the top. Transparent black at first.
using Tile = std::vector<Pixel>;
inline constexpr std::size_t kTilePixels = std::size_t{kTileSize} * kTileSize;

// Whether nothing of them is transparent in the least.
bool IsOpaque(const std::vector<Pixel>& pixels);

// For each pixel of a query along one axis, the pixel of the image's window that it shows; kNoPixel outside.
inline constexpr int kNoPixel = -1;
using QueryAxis = std::array<int, kQuerySize>;

// The two axes differ in the last bit, because the reader of images adds up along a row and multiplies down a
// column. imageSize: of the whole image along the axis, in pixels.
QueryAxis ColumnsOf(const TileQuery& query, std::int64_t imageSize);
QueryAxis RowsOf(const TileQuery& query, std::int64_t imageSize);

// The tile of a query: the average of the four by four pixels of the query that each of its pixels has.
// window holds query.width x query.height pixels of the image.
Tile AveragedTile(const std::vector<Pixel>& window, std::int64_t windowWidth, const QueryAxis& columns,
                  const QueryAxis& rows);

// What a tile is in the one of the level above, which stands for four: a quarter of it, rows from the top.
using Quarter = std::vector<Pixel>;
Quarter HalvedTile(const Tile& tile);
// That tile. The quarters come as they lie on the map: south-west, south-east, north-west, north-east; an
// empty one where there is no tile.
Tile JoinedTile(const std::array<Quarter, 4>& quarters);

}  // namespace tiler

#endif  // MOSAICON_TILER_TILE_PIXELS_H_
