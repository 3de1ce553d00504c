#include "tiler/tile_pixels.h"

#include <algorithm>

namespace tiler {

namespace {

constexpr std::size_t kHalf = kTileSize / 2;
constexpr int kEnlarged = kQuerySize / kTileSize;
// What the reader of images adds to a position before it cuts off the fraction.
constexpr double kEpsilon = 1e-10;

// Of each channel: some pixels of one column.
using ColumnSums = std::array<std::uint16_t, 4>;

// The part of a row that has sums. As bytes, which compilers add many of at a time.
void AddRow(const Pixel* row, std::vector<ColumnSums>& sums) {
  const std::uint8_t* bytes = &row->red;
  std::uint16_t* to = sums.front().data();
  const std::size_t count = (sums.size() - 1) * sizeof(Pixel);
  for (std::size_t i = 0; i < count; ++i) to[i] = static_cast<std::uint16_t>(to[i] + bytes[i]);
}

// The average of the pixels of a square of the query; halves upwards.
std::uint8_t Rounded(unsigned sum) {
  constexpr unsigned kCount = kEnlarged * kEnlarged;
  return static_cast<std::uint8_t>((sum + kCount / 2) / kCount);
}

// Averages of two by two pixels, halves upwards.
void HalveRows(const Pixel* upper, const Pixel* lower, Pixel* out, std::size_t count) {
  constexpr std::size_t kChannels = sizeof(Pixel);
  const std::uint8_t* a = &upper->red;
  const std::uint8_t* b = &lower->red;
  std::uint8_t* to = &out->red;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t k = 0; k < kChannels; ++k) {
      const std::size_t place = 2 * kChannels * i + k;
      const int sum = a[place] + a[place + kChannels] + b[place] + b[place + kChannels];
      to[kChannels * i + k] = static_cast<std::uint8_t>((sum + 2) / 4);
    }
  }
}

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

bool IsOpaque(const std::vector<Pixel>& pixels) {
  // In one go through all of them, which compilers do several at a time.
  std::uint8_t all = 255;
  for (const Pixel& pixel : pixels) all &= pixel.alpha;
  return all == 255;
}

Tile AveragedTile(const std::vector<Pixel>& window, std::int64_t windowWidth, const QueryAxis& columns,
                  const QueryAxis& rows) {
  Tile tile(kTilePixels);
  // A column for each of the window, and an empty one for what lies outside of the image.
  std::vector<ColumnSums> sums(static_cast<std::size_t>(windowWidth) + 1);
  std::array<std::size_t, kQuerySize> places;
  for (std::size_t k = 0; k < places.size(); ++k) {
    places[k] = static_cast<std::size_t>(columns[k] == kNoPixel ? windowWidth : columns[k]);
  }
  for (std::size_t y = 0; y < kTileSize; ++y) {
    std::fill(sums.begin(), sums.end(), ColumnSums{});
    bool isEmpty = true;
    for (std::size_t k = y * kEnlarged; k < (y + 1) * kEnlarged; ++k) {
      if (rows[k] == kNoPixel) continue;
      AddRow(&window[static_cast<std::size_t>(rows[k] * windowWidth)], sums);
      isEmpty = false;
    }
    if (isEmpty) continue;
    for (std::size_t x = 0; x < kTileSize; ++x) {
      ColumnSums sum = {};
      for (std::size_t k = x * kEnlarged; k < (x + 1) * kEnlarged; ++k) {
        const ColumnSums& column = sums[places[k]];
        for (std::size_t channel = 0; channel < sum.size(); ++channel) {
          sum[channel] = static_cast<std::uint16_t>(sum[channel] + column[channel]);
        }
      }
      tile[y * kTileSize + x] = {Rounded(sum[0]), Rounded(sum[1]), Rounded(sum[2]), Rounded(sum[3])};
    }
  }
  return tile;
}

Quarter HalvedTile(const Tile& tile) {
  Quarter quarter(kTilePixels / 4);
  for (std::size_t y = 0; y < kHalf; ++y) {
    const Pixel* upper = &tile[2 * y * kTileSize];
    HalveRows(upper, upper + kTileSize, &quarter[y * kHalf], kHalf);
  }
  return quarter;
}

Tile JoinedTile(const std::array<Quarter, 4>& quarters) {
  Tile tile(kTilePixels);
  for (std::size_t part = 0; part < quarters.size(); ++part) {
    if (quarters[part].empty()) continue;
    const std::size_t left = part % 2 * kHalf;
    const std::size_t top = part < 2 ? kHalf : 0;
    for (std::size_t y = 0; y < kHalf; ++y) {
      std::copy_n(&quarters[part][y * kHalf], kHalf, &tile[(top + y) * kTileSize + left]);
    }
  }
  return tile;
}

}  // namespace tiler
