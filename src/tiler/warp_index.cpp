#include "tiler/warp_index.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tiler {

namespace {

// What GDAL's nearest neighbour adds to a position before it cuts off the fraction.
constexpr double kEpsilon = 1e-10;
// Map pixels along the side of a cell.
constexpr int kCellSize = 128;
// A position from a polynomial may be wrong by so many source pixels; the errors at the points between known
// ones have to be that much smaller.
constexpr double kTolerance = 1e-4;
constexpr double kSafety = 16;

// Whether the border of a source pixel is so near that a position, not below -1, could lie beyond it. whole:
// of the position plus one, without its fraction.
bool IsDoubtful(double position, std::int32_t whole) {
  return std::fabs(position + 1 - whole - 0.5) > 0.5 - kTolerance;
}

}  // namespace

struct WarpIndex::Cell {
  int left = 0;  // in the window
  int top = 0;
  int right = 0;  // behind its last pixel
  int bottom = 0;
  CellPositions positions;

  bool IsSmooth() const { return positions.error * kSafety < kTolerance; }
};

WarpIndex::WarpIndex(ExactPositions exact, int sourceWidth, int sourceHeight)
    : m_exact(std::move(exact)), m_sourceWidth(sourceWidth), m_sourceHeight(sourceHeight) {}

const std::vector<SourcePixel>& WarpIndex::Of(const PixelWindow& window) {
  m_pixels.assign(static_cast<std::size_t>(window.width) * static_cast<std::size_t>(window.height), {});
  m_doubtful.clear();
  std::vector<Cell> cells;
  std::vector<double> xs;
  std::vector<double> ys;
  for (int top = 0; top < window.height; top += kCellSize) {
    for (int left = 0; left < window.width; left += kCellSize) {
      cells.push_back({left,
                       top,
                       std::min(left + kCellSize, window.width),
                       std::min(top + kCellSize, window.height),
                       {}});
      AddPointsOfCell(static_cast<double>(window.x) + left + 0.5, static_cast<double>(window.y) + top + 0.5,
                      kCellSize, kCellSize, xs, ys);
    }
  }
  Ask(xs, ys);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    cells[i].positions = PositionsOfCell(&xs[i * kPointsOfCell], &ys[i * kPointsOfCell]);
    FillCell(cells[i], window);
  }
  AskForDoubtful(window);
  return m_pixels;
}

std::vector<SourcePixel> WarpIndex::ExactlyOf(const PixelWindow& window) const {
  std::vector<double> xs;
  std::vector<double> ys;
  for (int y = 0; y < window.height; ++y) {
    for (int x = 0; x < window.width; ++x) {
      xs.push_back(static_cast<double>(window.x + x) + 0.5);
      ys.push_back(static_cast<double>(window.y + y) + 0.5);
    }
  }
  m_exact(xs, ys);
  std::vector<SourcePixel> pixels;
  for (std::size_t i = 0; i < xs.size(); ++i) pixels.push_back(PixelAt(xs[i], ys[i]));
  return pixels;
}

void WarpIndex::Ask(std::vector<double>& xs, std::vector<double>& ys) {
  m_asked += static_cast<std::int64_t>(xs.size());
  if (!xs.empty()) m_exact(xs, ys);
}

SourcePixel WarpIndex::PixelAt(double x, double y) const {
  const bool isInside = x >= 0 && y >= 0 && x + kEpsilon <= m_sourceWidth && y + kEpsilon <= m_sourceHeight;
  if (!isInside) return {};
  // The right and lower border belong to the last pixel.
  return {static_cast<std::int32_t>(std::min(x + kEpsilon, m_sourceWidth - 1)),
          static_cast<std::int32_t>(std::min(y + kEpsilon, m_sourceHeight - 1))};
}

void WarpIndex::FillCell(const Cell& cell, const PixelWindow& window) {
  for (int row = cell.top; row < cell.bottom; ++row) {
    const double down = static_cast<double>(row - cell.top) / kCellSize;
    const Polynomial xs = cell.positions.xs.AlongRow(down);
    const Polynomial ys = cell.positions.ys.AlongRow(down);
    const std::size_t first = static_cast<std::size_t>(row) * static_cast<std::size_t>(window.width) +
                              static_cast<std::size_t>(cell.left);
    for (int i = 0; i < cell.right - cell.left; ++i) {
      const std::size_t place = first + static_cast<std::size_t>(i);
      const double across = static_cast<double>(i) / kCellSize;
      const double x = xs.At(across);
      const double y = ys.At(across);
      if (!cell.IsSmooth()) {
        m_doubtful.push_back(place);
        continue;
      }
      if (x < -1 || y < -1 || x > m_sourceWidth + 1 || y > m_sourceHeight + 1) continue;
      const auto column = static_cast<std::int32_t>(x + 1);
      const auto line = static_cast<std::int32_t>(y + 1);
      if (IsDoubtful(x, column) || IsDoubtful(y, line)) {
        m_doubtful.push_back(place);
      } else if (x >= 0 && y >= 0 && x < m_sourceWidth && y < m_sourceHeight) {
        m_pixels[place] = {column - 1, line - 1};
      }
    }
  }
}

void WarpIndex::AskForDoubtful(const PixelWindow& window) {
  std::vector<double> xs;
  std::vector<double> ys;
  const auto width = static_cast<std::size_t>(window.width);
  for (const std::size_t place : m_doubtful) {
    const std::size_t column = place % width;
    const std::size_t row = place / width;
    xs.push_back(static_cast<double>(window.x) + static_cast<double>(column) + 0.5);
    ys.push_back(static_cast<double>(window.y) + static_cast<double>(row) + 0.5);
  }
  Ask(xs, ys);
  for (std::size_t i = 0; i < xs.size(); ++i) m_pixels[m_doubtful[i]] = PixelAt(xs[i], ys[i]);
}

}  // namespace tiler
