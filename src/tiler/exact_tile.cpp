#include "tiler/exact_tile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>

#include "tiler/area_row.h"
#include "tiler/pixel_sums.h"

namespace tiler {

namespace {

constexpr std::uint8_t kOpaque = 255;
constexpr std::size_t kHalf = kTileSize / 2;

// The side of a pixel of the map along an axis of the image. Where the two are turned against each other,
// that of the upright pixel that spreads as far stands for it: of a real image, turned by 45 degrees, the
// tiles are 53 dB from the truth then, and 58 dB where it is not turned. Where a projection comes to its end
// there is no telling how large it gets.
double ScaleOf(double across, double down) {
  constexpr double kMost = 256;
  return std::min(std::hypot(across, down), kMost);
}

// How far from its middle a pixel of the map may need pixels of the image, along an axis of that.
double ReachOf(double across, double down, const AxisWeights& weights) {
  return std::min((std::fabs(across) + std::fabs(down)) / 2, ScaleOf(across, down)) + weights.Reach();
}

// The weights of a pixel that meet pixels of the image.
struct Part {
  int left = 0;
  int right = 0;
  int top = 0;
  int bottom = 0;
};

class Sampler {
 public:
  Sampler(const PositionCell& cell, Resampling resampling, const PixelWindow& window, const Pixel* pixels)
      : m_cell(cell),
        m_across(resampling, ScaleOf(cell.acrossX, cell.downX)),
        m_down(resampling, ScaleOf(cell.acrossY, cell.downY)),
        m_reachX(ReachOf(cell.acrossX, cell.downX, m_across)),
        m_reachY(ReachOf(cell.acrossY, cell.downY, m_down)),
        m_columns(m_across.Most()),
        m_rows(m_down.Most()),
        m_left(static_cast<int>(window.x)),
        m_top(static_cast<int>(window.y)),
        m_width(window.width),
        m_height(window.height),
        m_pixels(pixels) {}

  template <bool isOpaque>
  void Fill(Tile& tile) {
    for (int row = 0; row < m_cell.size; ++row) {
      const double down = static_cast<double>(row) / m_cell.size;
      const Polynomial xs = m_cell.xs.AlongRow(down);
      const Polynomial ys = m_cell.ys.AlongRow(down);
      Pixel* to = &tile[static_cast<std::size_t>(m_cell.top + row) * kTileSize +
                        static_cast<std::size_t>(m_cell.left)];
      for (int column = 0; column < m_cell.size; ++column) {
        const double across = static_cast<double>(column) / m_cell.size;
        to[column] = PixelAt<isOpaque>(xs.At(across), ys.At(across));
      }
    }
  }

 private:
  // Also of what is no number.
  bool IsOutside(double x, double y) const {
    return !(x > m_left - m_reachX && y > m_top - m_reachY && x < m_left + m_width + m_reachX &&
             y < m_top + m_height + m_reachY);
  }

  template <bool isOpaque>
  Pixel PixelAt(double x, double y) {
    if (IsOutside(x, y)) return {};
    PixelSums sums;
    Add<isOpaque>(x, y, sums);
    return sums.Seen();
  }

  template <bool isOpaque>
  void Add(double x, double y, PixelSums& sums) {
    const AxisWeights::Range columns = m_across.At(x, m_columns.data());
    const AxisWeights::Range rows = m_down.At(y, m_rows.data());
    const int left = columns.first - m_left;
    const int top = rows.first - m_top;
    const bool isWithin =
        left >= 0 && top >= 0 && left + columns.count <= m_width && top + rows.count <= m_height;
    if (isWithin) {
      AddPart<isOpaque>({0, columns.count, 0, rows.count}, left, top, 1, sums);
      return;
    }
    const Part part = {std::max(0, -left), std::min(columns.count, m_width - left), std::max(0, -top),
                       std::min(rows.count, m_height - top)};
    const float share = ShareOf(m_across, x - m_left, m_width, m_columns, part.left, part.right) *
                        ShareOf(m_down, y - m_top, m_height, m_rows, part.top, part.bottom);
    if (share != 0) AddPart<isOpaque>(part, left, top, share, sums);
  }

  // What the weights of a part count for. Those of an area are what is covered of it; those of a kernel are
  // all that there is, for positions within the image.
  static float ShareOf(const AxisWeights& axis, double position, int size, const std::vector<float>& weights,
                       int from, int to) {
    if (axis.IsArea()) return 1;
    if (position < 0 || position >= size) return 0;
    float sum = 0;
    for (int i = from; i < to; ++i) sum += weights[static_cast<std::size_t>(i)];
    return sum == 0 ? 0 : 1 / sum;
  }

  template <bool isOpaque>
  void AddPart(const Part& part, int left, int top, float share, PixelSums& sums) const {
    for (int row = part.top; row < part.bottom; ++row) {
      const Pixel* line = m_pixels + static_cast<std::ptrdiff_t>(top + row) * m_width + left;
      PixelSums ofRow;
      for (int column = part.left; column < part.right; ++column) {
        ofRow.Add<isOpaque>(line[column], m_columns[static_cast<std::size_t>(column)]);
      }
      sums.Add(ofRow, share * m_rows[static_cast<std::size_t>(row)]);
    }
  }

  const PositionCell& m_cell;
  AxisWeights m_across;
  AxisWeights m_down;
  double m_reachX;
  double m_reachY;
  std::vector<float> m_columns;  // weights
  std::vector<float> m_rows;
  int m_left;  // of the window
  int m_top;
  int m_width;
  int m_height;
  const Pixel* m_pixels;
};

// Whether AreaRow is for it.
bool IsMadeInRows(const PositionCell& cell, Resampling resampling) {
  const double across = ScaleOf(cell.acrossX, cell.downX);
  const double down = ScaleOf(cell.acrossY, cell.downY);
  // A cell of one pixel may lie where positions end.
  return cell.size > 1 && AxisWeights(resampling, across).IsArea() &&
         AxisWeights(resampling, down).IsArea() && AreaRow::Suits(across) && AreaRow::Suits(down);
}

void FillInRows(const PositionCell& cell, const AreaSource& source, Tile& tile) {
  AreaRow made(source, ScaleOf(cell.acrossX, cell.downX), ScaleOf(cell.acrossY, cell.downY));
  for (int row = 0; row < cell.size; ++row) {
    const double down = static_cast<double>(row) / cell.size;
    made.Fill(
        cell.xs.AlongRow(down), cell.ys.AlongRow(down), cell.size,
        &tile[static_cast<std::size_t>(cell.top + row) * kTileSize + static_cast<std::size_t>(cell.left)]);
  }
}

bool IsOpaqueOrHidden(const std::vector<Pixel>& pixels) {
  return std::all_of(pixels.begin(), pixels.end(),
                     [](const Pixel& pixel) { return pixel.alpha == kOpaque || pixel.alpha == 0; });
}

// The average of four, of which each counts as much as it is opaque.
Pixel Joined(const std::array<Pixel, 4>& four) {
  std::array<int, 4> sums = {};
  for (const Pixel& each : four) {
    sums[0] += each.alpha * each.red;
    sums[1] += each.alpha * each.green;
    sums[2] += each.alpha * each.blue;
    sums[3] += each.alpha;
  }
  const int weight = sums[3];
  const auto alpha = static_cast<std::uint8_t>((weight + 2) / 4);
  if (alpha == 0) return {};
  const auto rounded = [weight](int sum) { return static_cast<std::uint8_t>((sum + weight / 2) / weight); };
  return {rounded(sums[0]), rounded(sums[1]), rounded(sums[2]), alpha};
}

// As bytes, which compilers average many of at a time. Halves go to the even neighbour: maps do not get
// brighter from level to level.
Quarter HalvedOpaque(const Tile& tile) {
  constexpr std::size_t kChannels = sizeof(Pixel);
  Quarter quarter(kTilePixels / 4);
  for (std::size_t y = 0; y < kHalf; ++y) {
    const std::uint8_t* upper = &tile[2 * y * kTileSize].red;
    const std::uint8_t* lower = upper + kChannels * kTileSize;
    std::uint8_t* to = &quarter[y * kHalf].red;
    for (std::size_t i = 0; i < kHalf; ++i) {
      for (std::size_t k = 0; k < kChannels; ++k) {
        const std::size_t place = 2 * kChannels * i + k;
        const int sum = upper[place] + upper[place + kChannels] + lower[place] + lower[place + kChannels];
        to[kChannels * i + k] = static_cast<std::uint8_t>((sum + 1 + (sum / 4) % 2) / 4);
      }
    }
  }
  return quarter;
}

struct Span {
  double least = HUGE_VAL;
  double most = -HUGE_VAL;

  void Add(const CellValues& values, double reach) {
    for (const double value : values.known) {
      if (!std::isfinite(value)) continue;
      least = std::min(least, value - reach);
      most = std::max(most, value + reach);
    }
  }
  // Whole pixels of an image of this size.
  std::array<int, 2> Within(int size) const {
    return {static_cast<int>(std::floor(std::clamp(least, 0.0, static_cast<double>(size)))),
            static_cast<int>(std::ceil(std::clamp(most, 0.0, static_cast<double>(size))))};
  }
};

}  // namespace

PixelWindow SourceOf(const std::vector<PositionCell>& cells, Resampling resampling, int width, int height) {
  // A curve bends a little beyond its known points.
  constexpr double kMargin = 2;
  Span columns;
  Span rows;
  for (const PositionCell& cell : cells) {
    const AxisWeights across(resampling, ScaleOf(cell.acrossX, cell.downX));
    const AxisWeights down(resampling, ScaleOf(cell.acrossY, cell.downY));
    columns.Add(cell.xs, ReachOf(cell.acrossX, cell.downX, across) + kMargin);
    rows.Add(cell.ys, ReachOf(cell.acrossY, cell.downY, down) + kMargin);
  }
  const auto [left, right] = columns.Within(width);
  const auto [top, bottom] = rows.Within(height);
  if (left >= right || top >= bottom) return {};
  return {left, top, right - left, bottom - top};
}

Tile ExactTile(const std::vector<PositionCell>& cells, Resampling resampling, const PixelWindow& window,
               const std::vector<Pixel>& pixels) {
  Tile tile(kTilePixels);
  if (window.width == 0) return tile;
  const bool isOpaque = IsOpaque(pixels);
  std::optional<AreaSource> source;
  if (isOpaque || IsOpaqueOrHidden(pixels)) source.emplace(window, pixels);
  for (const PositionCell& cell : cells) {
    if (source && IsMadeInRows(cell, resampling)) {
      FillInRows(cell, *source, tile);
      continue;
    }
    Sampler sampler(cell, resampling, window, pixels.data());
    if (isOpaque) {
      sampler.Fill<true>(tile);
    } else {
      sampler.Fill<false>(tile);
    }
  }
  return tile;
}

Quarter HalvedByOpacity(const Tile& tile) {
  if (IsOpaque(tile)) return HalvedOpaque(tile);
  Quarter quarter(kTilePixels / 4);
  for (std::size_t i = 0; i < quarter.size(); ++i) {
    const std::size_t place = i / kHalf * 2 * kTileSize + i % kHalf * 2;
    quarter[i] = Joined({tile[place], tile[place + 1], tile[place + kTileSize], tile[place + kTileSize + 1]});
  }
  return quarter;
}

}  // namespace tiler
