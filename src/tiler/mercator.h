// The web map's projection (EPSG:3857) and the tiles that cover it: squares of 256 pixels, numbered from the
// west and, as TMS has it, from the south. Everything is computed in the order in which gdal2tiles computes
// it, so that not even the last bit differs. Portable, no state.
#ifndef MOSAICON_TILER_MERCATOR_H_
#define MOSAICON_TILER_MERCATOR_H_

#include <tuple>

namespace tiler {

// Degrees north and south: where the map of the whole globe is a square.
inline constexpr double kLatitudeLimit = 85.0511287798066;

inline constexpr int kTileSize = 256;  // pixels
inline constexpr int kLevels = 32;     // 0 to 31

struct TileId {
  int level = 0;
  int column = 0;
  int row = 0;  // from the south

  bool operator==(const TileId&) const = default;
  // By level, column, row.
  bool operator<(const TileId& other) const {
    return std::tie(level, column, row) < std::tie(other.level, other.column, other.row);
  }
};

// In metres of the projection, or in degrees.
struct Bounds {
  double west = 0;
  double south = 0;
  double east = 0;
  double north = 0;
};

// Metres that a pixel of this level covers at the equator.
double Resolution(int level);

// The coarsest level whose pixels are not larger than pixelSize metres, or the one before it: an image is
// never magnified by as much as two.
int LevelForPixelSize(double pixelSize);

// Metres of the projection.
Bounds TileBounds(const TileId& tile);
// Degrees of longitude and latitude, WGS 84.
Bounds TileBoundsInDegrees(const TileId& tile);

// Of a position in metres, along either axis: the column or row of the tile that it is in. One that lies
// exactly between two tiles is in the western or southern one.
int TileNumber(double metres, int level);

struct LatitudeLongitude {
  double latitude = 0;
  double longitude = 0;
};
LatitudeLongitude DegreesOf(double x, double y);

}  // namespace tiler

#endif  // MOSAICON_TILER_MERCATOR_H_
