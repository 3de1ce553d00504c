#include "tiler/position_cells.h"

#include <array>
#include <cmath>

namespace tiler {

namespace {

// Of a cell's side, in pixels of the tile, from one try to the next. The last is not tried any more.
constexpr std::array<int, 6> kSizes = {128, 32, 8, 4, 2, 1};
// Source pixels, and how much smaller the errors that are seen have to be.
constexpr double kTolerance = 1e-3;
constexpr double kSafety = 4;

struct Square {
  int left = 0;
  int top = 0;
};

// The positions of a tile are asked for in metres; its own pixels are counted from its north-west corner.
class Tries {
 public:
  Tries(const TileId& tile, const ExactPositions& exact)
      : m_exact(exact), m_bounds(TileBounds(tile)), m_pixel((m_bounds.east - m_bounds.west) / kTileSize) {}

  std::vector<CellPositions> Of(const std::vector<Square>& squares, int size) const {
    std::vector<double> xs;
    std::vector<double> ys;
    for (const Square& each : squares) {
      AddPointsOfCell(m_bounds.west + (each.left + 0.5) * m_pixel,
                      m_bounds.north - (each.top + 0.5) * m_pixel, size * m_pixel, -size * m_pixel, xs, ys);
    }
    if (!xs.empty()) m_exact(xs, ys);
    std::vector<CellPositions> positions;
    for (std::size_t i = 0; i < squares.size(); ++i) {
      positions.push_back(PositionsOfCell(&xs[i * kPointsOfCell], &ys[i * kPointsOfCell]));
    }
    return positions;
  }

 private:
  const ExactPositions& m_exact;
  Bounds m_bounds;
  double m_pixel;  // metres
};

PositionCell CellOf(const Square& square, int size, const CellPositions& positions) {
  // From the middle of one side to that of the other. At the end of a projection there may be none.
  const auto step = [size](const CellValues& values, std::size_t from, std::size_t to) {
    const double difference = values.known[to] - values.known[from];
    return std::isfinite(difference) ? difference / size : 0;
  };
  constexpr std::size_t kWest = 3;
  constexpr std::size_t kEast = 5;
  constexpr std::size_t kNorth = 1;
  constexpr std::size_t kSouth = 7;
  PositionCell cell = {square.left,
                       square.top,
                       size,
                       positions.xs,
                       positions.ys,
                       step(positions.xs, kWest, kEast),
                       step(positions.ys, kWest, kEast),
                       step(positions.xs, kNorth, kSouth),
                       step(positions.ys, kNorth, kSouth)};
  if (size == 1) {
    // Its one pixel lies at the first point; beside it there may be no positions any more.
    cell.xs.known.fill(positions.xs.known.front());
    cell.ys.known.fill(positions.ys.known.front());
  }
  return cell;
}

std::vector<Square> Divided(const std::vector<Square>& squares, int size, int part) {
  std::vector<Square> parts;
  for (const Square& each : squares) {
    for (int top = each.top; top < each.top + size; top += part) {
      for (int left = each.left; left < each.left + size; left += part) parts.push_back({left, top});
    }
  }
  return parts;
}

}  // namespace

std::vector<PositionCell> PositionCellsOf(const TileId& tile, const ExactPositions& exact) {
  const Tries tries(tile, exact);
  std::vector<PositionCell> cells;
  std::vector<Square> left = Divided({{0, 0}}, kTileSize, kSizes.front());
  for (std::size_t i = 0; i < kSizes.size() && !left.empty(); ++i) {
    const bool isLast = i + 1 == kSizes.size();
    const std::vector<CellPositions> positions = tries.Of(left, kSizes[i]);
    std::vector<Square> rough;
    for (std::size_t k = 0; k < left.size(); ++k) {
      if (!positions[k].isSeen) continue;
      if (isLast || positions[k].error * kSafety < kTolerance) {
        cells.push_back(CellOf(left[k], kSizes[i], positions[k]));
      } else {
        rough.push_back(left[k]);
      }
    }
    left = isLast ? rough : Divided(rough, kSizes[i], kSizes[i + 1]);
  }
  return cells;
}

}  // namespace tiler
