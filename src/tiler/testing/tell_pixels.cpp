// Cuts the finest tiles of an image in the map's projection and the tiles above them, for pixels_test.py,
// which has the same from gdal2tiles.
//
//   tiler_tell_pixels LEFT TOP PIXEL WIDTH HEIGHT < PIXELS > TILES
//
// PIXELS: WIDTH x HEIGHT times red, green, blue, alpha. TILES: the same of each tile, the finest level first,
// in each level from the north-west in rows.
#include <cstdio>
#include <cstdlib>
#include <map>
#include <vector>

#include "tiler/tile_pixels.h"

namespace {

using namespace tiler;

Tile FinestTile(const TileQuery& query, const MapImage& image, const std::vector<Pixel>& pixels) {
  if (query.width == 0 || query.height == 0 || query.queryWidth == 0 || query.queryHeight == 0) {
    return Tile(kTilePixels);
  }
  std::vector<Pixel> window;
  for (std::int64_t y = query.y; y < query.y + query.height; ++y) {
    const auto row = pixels.begin() + y * image.width + query.x;
    window.insert(window.end(), row, row + query.width);
  }
  return AveragedTile(window, query.width, ColumnsOf(query, image.width), RowsOf(query, image.height));
}

using Tiles = std::map<TileId, Tile>;

Tile TileAbove(const TileId& tile, const Tiles& tiles) {
  std::array<Quarter, 4> quarters;
  for (int i = 0; i < 4; ++i) {
    const auto found = tiles.find({tile.level + 1, 2 * tile.column + i % 2, 2 * tile.row + i / 2});
    if (found != tiles.end()) quarters[static_cast<std::size_t>(i)] = HalvedTile(found->second);
  }
  return JoinedTile(quarters);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) return 2;
  const double pixel = std::atof(argv[3]);
  const MapImage image = {
      std::atoi(argv[4]), std::atoi(argv[5]), std::atof(argv[1]), std::atof(argv[2]), pixel, -pixel};
  std::vector<Pixel> pixels(static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height));
  if (std::fread(pixels.data(), sizeof(Pixel), pixels.size(), stdin) != pixels.size()) return 1;
  const Pyramid pyramid(image);
  Tiles tiles;
  for (int level = pyramid.Finest(); level >= pyramid.Coarsest(); --level) {
    const TileRange& range = pyramid.Range(level);
    for (int row = range.north; row >= range.south; --row) {
      for (int column = range.west; column <= range.east; ++column) {
        const TileId id = {level, column, row};
        Tile tile =
            level == pyramid.Finest() ? FinestTile(pyramid.QueryOf(id), image, pixels) : TileAbove(id, tiles);
        std::fwrite(tile.data(), sizeof(Pixel), tile.size(), stdout);
        tiles[id] = std::move(tile);
      }
    }
  }
  return 0;
}
