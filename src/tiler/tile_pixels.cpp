#include "tiler/tile_pixels.h"

#include <algorithm>

namespace tiler {

namespace {

constexpr int kEnlarged = kQuerySize / kTileSize;
// What the reader of images adds to a position before it cuts off the fraction.
constexpr double kEpsilon = 1e-10;

// Sums of the channels of some pixels.
struct Sums {
  unsigned red = 0;
  unsigned green = 0;
  unsigned blue = 0;
  unsigned alpha = 0;

  void Add(const Pixel& pixel) {
    red += pixel.red;
    green += pixel.green;
    blue += pixel.blue;
    alpha += pixel.alpha;
  }
  // Rounded, halves upwards.
  Pixel Average(unsigned count) const {
    const auto rounded = [count](unsigned sum) {
      return static_cast<std::uint8_t>((sum + count / 2) / count);
    };
    return {rounded(red), rounded(green), rounded(blue), rounded(alpha)};
  }
};

int PixelAt(double position, std::int64_t first, std::int64_t imageSize) {
  const double inImage = std::min(std::max(0.0, position), static_cast<double>(imageSize - 1));
  return static_cast<int>(static_cast<std::int64_t>(inImage) - first);
}

QueryAxis Outside() {
  QueryAxis axis;
  axis.fill(kNoPixel);
  return axis;
}

}  // namespace

QueryAxis ColumnsOf(const TileQuery& query, std::int64_t imageSize) {
  QueryAxis axis = Outside();
  const double step = static_cast<double>(query.width) / static_cast<double>(query.queryWidth);
  double position = 0.5 * step + static_cast<double>(query.x) + kEpsilon;
  for (std::int64_t i = 0; i < query.queryWidth; ++i) {
    axis[static_cast<std::size_t>(query.queryX + i)] = PixelAt(position, query.x, imageSize);
    position += step;
  }
  return axis;
}

QueryAxis RowsOf(const TileQuery& query, std::int64_t imageSize) {
  QueryAxis axis = Outside();
  const double step = static_cast<double>(query.height) / static_cast<double>(query.queryHeight);
  for (std::int64_t i = 0; i < query.queryHeight; ++i) {
    const double position = (static_cast<double>(i) + 0.5) * step + static_cast<double>(query.y) + kEpsilon;
    axis[static_cast<std::size_t>(query.queryY + i)] = PixelAt(position, query.y, imageSize);
  }
  return axis;
}

Tile AveragedTile(const std::vector<Pixel>& window, std::int64_t windowWidth, const QueryAxis& columns,
                  const QueryAxis& rows) {
  Tile tile(kTilePixels);
  for (std::size_t i = 0; i < kTilePixels; ++i) {
    const std::size_t left = i % kTileSize * kEnlarged;
    const std::size_t top = i / kTileSize * kEnlarged;
    Sums sums;
    for (std::size_t y = top; y < top + kEnlarged; ++y) {
      for (std::size_t x = left; x < left + kEnlarged; ++x) {
        if (rows[y] == kNoPixel || columns[x] == kNoPixel) continue;
        sums.Add(window[static_cast<std::size_t>(rows[y] * windowWidth + columns[x])]);
      }
    }
    tile[i] = sums.Average(kEnlarged * kEnlarged);
  }
  return tile;
}

Tile HalvedTile(const std::array<const Tile*, 4>& finer) {
  constexpr std::size_t kHalf = kTileSize / 2;
  Tile tile(kTilePixels);
  for (std::size_t i = 0; i < kTilePixels; ++i) {
    const std::size_t x = i % kTileSize;
    const std::size_t y = i / kTileSize;
    const Tile* part = finer[(y < kHalf ? 2U : 0U) + (x < kHalf ? 0U : 1U)];
    if (part == nullptr) continue;
    const std::size_t corner = y % kHalf * 2 * kTileSize + x % kHalf * 2;
    Sums sums;
    for (const std::size_t each : {corner, corner + 1, corner + kTileSize, corner + kTileSize + 1}) {
      sums.Add((*part)[each]);
    }
    tile[i] = sums.Average(4);
  }
  return tile;
}

}  // namespace tiler
