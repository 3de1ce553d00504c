#include "tiler/mercator.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tiler {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kRadius = 6378137;  // metres
constexpr double kResolutionOfLevel0 = 2 * kPi * kRadius / kTileSize;
constexpr double kHalfWidth = 2 * kPi * kRadius / 2.0;  // from the centre of the map to its edges, in metres

// Linux' library rounds the arc tangent nearly always to the nearest number. That of Windows does not, and
// not every version alike; the wider type has it right there.
#ifdef _WIN32
using Wide = long double;
#else
using Wide = double;
#endif

}  // namespace

double Resolution(int level) {
  return std::ldexp(kResolutionOfLevel0, -level);
}

int LevelForPixelSize(double pixelSize) {
  for (int level = 0; level < kLevels; ++level) {
    if (pixelSize > Resolution(level)) return std::max(0, level - 1);
  }
  return kLevels - 1;
}

Bounds TileBounds(const TileId& tile) {
  // Beyond 2^31 at the finest levels.
  const auto metres = [&tile](double number) {
    return number * kTileSize * Resolution(tile.level) - kHalfWidth;
  };
  return {metres(tile.column), metres(tile.row), metres(tile.column + 1.0), metres(tile.row + 1.0)};
}

Bounds TileBoundsInDegrees(const TileId& tile) {
  const Bounds metres = TileBounds(tile);
  const LatitudeLongitude southWest = DegreesOf(metres.west, metres.south);
  const LatitudeLongitude northEast = DegreesOf(metres.east, metres.north);
  return {southWest.longitude, southWest.latitude, northEast.longitude, northEast.latitude};
}

int TileNumber(double metres, int level) {
  const double pixels = (metres + kHalfWidth) / Resolution(level);
  return static_cast<int>(std::ceil(pixels / kTileSize) - 1);
}

LatitudeLongitude DegreesOf(double x, double y) {
  const double longitude = (x / kHalfWidth) * 180.0;
  const double stretched = (y / kHalfWidth) * 180.0;
  const auto grown = static_cast<double>(std::exp(static_cast<Wide>(stretched * kPi / 180.0)));
  const auto angle = static_cast<double>(std::atan(static_cast<Wide>(grown)));
  const double latitude = 180 / kPi * (2 * angle - kPi / 2.0);
  return {latitude, longitude};
}

}  // namespace tiler
