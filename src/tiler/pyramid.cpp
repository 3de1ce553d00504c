#include "tiler/pyramid.h"

#include <algorithm>
#include <cstdlib>

namespace tiler {

namespace {

// Degrees, of the edges of the square map as its pages tell them.
constexpr double kNorthernEnd = 85.05112878;
constexpr double kEasternEnd = 180.0;

// One axis of a query: a window of the image that may stick out of it, and the part of the query that it
// fills. Both are cut to what the image has, rounding down at each step.
struct Axis {
  std::int64_t first;  // pixel of the image
  std::int64_t size;
  std::int64_t queryFirst;
  std::int64_t querySize;
};

std::int64_t ShareOf(std::int64_t size, std::int64_t part, std::int64_t whole) {
  return static_cast<std::int64_t>(static_cast<double>(size) *
                                   (static_cast<double>(part) / static_cast<double>(whole)));
}

Axis CutToImage(std::int64_t first, std::int64_t size, std::int64_t imageSize) {
  Axis axis = {first, size, 0, kQuerySize};
  if (axis.first < 0) {
    const std::int64_t outside = std::abs(axis.first);
    axis.queryFirst = ShareOf(axis.querySize, outside, axis.size);
    axis.querySize -= axis.queryFirst;
    axis.size -= ShareOf(axis.size, outside, axis.size);
    axis.first = 0;
  }
  if (axis.first + axis.size > imageSize) {
    axis.querySize = ShareOf(axis.querySize, imageSize - axis.first, axis.size);
    axis.size = imageSize - axis.first;
  }
  return axis;
}

// Pixels from the image's edge, and pixels of a length, as gdal2tiles rounds them.
std::int64_t PixelAt(double distance, double pixelSize) {
  return static_cast<std::int64_t>(distance / pixelSize + 0.001);
}
std::int64_t PixelsIn(double length, double pixelSize) {
  // Of a length, which is never negative. NOLINTNEXTLINE(bugprone-incorrect-roundings)
  return std::max<std::int64_t>(1, static_cast<std::int64_t>(length / pixelSize + 0.5));
}

TileRange RangeOf(const Bounds& metres, int level) {
  const int last = static_cast<int>((std::int64_t{1} << level) - 1);
  return {std::max(0, TileNumber(metres.west, level)), std::max(0, TileNumber(metres.south, level)),
          std::min(last, TileNumber(metres.east, level)), std::min(last, TileNumber(metres.north, level))};
}

}  // namespace

Pyramid::Pyramid(const MapImage& image) : m_image(image) {
  m_metres = {image.left, image.top - image.height * image.pixelWidth,
              image.left + image.width * image.pixelWidth, image.top};
  for (int level = 0; level < kLevels; ++level) m_ranges.push_back(RangeOf(m_metres, level));
  // The whole image in about one tile.
  m_coarsest = LevelForPixelSize(image.pixelWidth * std::max(image.width, image.height) / kTileSize);
  m_finest = std::max(m_coarsest, LevelForPixelSize(image.pixelWidth));
}

std::int64_t Pyramid::TileCount() const {
  std::int64_t count = 0;
  for (int level = m_coarsest; level <= m_finest; ++level) count += Range(level).Count();
  return count;
}

Bounds Pyramid::Degrees() const {
  const LatitudeLongitude southWest = DegreesOf(m_metres.west, m_metres.south);
  const LatitudeLongitude northEast = DegreesOf(m_metres.east, m_metres.north);
  return {std::max(-kEasternEnd, southWest.longitude), std::max(-kNorthernEnd, southWest.latitude),
          std::min(kEasternEnd, northEast.longitude), std::min(kNorthernEnd, northEast.latitude)};
}

TileQuery Pyramid::QueryOf(const TileId& tile) const {
  const Bounds bounds = TileBounds(tile);
  const Axis across = CutToImage(PixelAt(bounds.west - m_image.left, m_image.pixelWidth),
                                 PixelsIn(bounds.east - bounds.west, m_image.pixelWidth), m_image.width);
  const Axis down = CutToImage(PixelAt(bounds.north - m_image.top, m_image.pixelHeight),
                               PixelsIn(bounds.south - bounds.north, m_image.pixelHeight), m_image.height);
  return {across.first,      down.first,      across.size,      down.size,
          across.queryFirst, down.queryFirst, across.querySize, down.querySize};
}

}  // namespace tiler
