#include "tiler/position_cells.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tiler {
namespace {

constexpr TileId kTile = {15, 17000, 21000};

// By name of what is to be seen: a place on the map as pixels of an image.
using Position = double (*)(double x, double y);

double Metres(double steps) {
  return steps * Resolution(kTile.level);
}

class Image {
 public:
  Image(Position x, Position y) : m_x(x), m_y(y), m_bounds(TileBounds(kTile)) {}

  // In pixels of the tile from its north-west corner.
  void operator()(std::vector<double>& xs, std::vector<double>& ys) {
    asked += xs.size();
    for (std::size_t i = 0; i < xs.size(); ++i) {
      const double x = (xs[i] - m_bounds.west) / Metres(1);
      const double y = (m_bounds.north - ys[i]) / Metres(1);
      xs[i] = m_x(x, y);
      ys[i] = m_y(x, y);
    }
  }

  std::size_t asked = 0;

 private:
  Position m_x;
  Position m_y;
  Bounds m_bounds;
};

// Every pixel once, each within a thousandth of its true position.
std::vector<PositionCell> CheckedCells(Image& image, Position x, Position y) {
  const std::vector<PositionCell> cells = PositionCellsOf(kTile, std::ref(image));
  std::vector<int> seen(std::size_t{kTileSize} * kTileSize);
  for (const PositionCell& cell : cells) {
    for (int row = 0; row < cell.size; ++row) {
      for (int column = 0; column < cell.size; ++column) {
        const double down = static_cast<double>(row) / cell.size;
        const double across = static_cast<double>(column) / cell.size;
        const double trueX = cell.left + column + 0.5;
        const double trueY = cell.top + row + 0.5;
        ++seen[static_cast<std::size_t>((cell.top + row) * kTileSize + cell.left + column)];
        if (!std::isfinite(x(trueX, trueY) + y(trueX, trueY))) continue;
        EXPECT_NEAR(cell.xs.AlongRow(down).At(across), x(trueX, trueY), 1e-3);
        EXPECT_NEAR(cell.ys.AlongRow(down).At(across), y(trueX, trueY), 1e-3);
      }
    }
  }
  for (const int count : seen) EXPECT_LE(count, 1);
  return cells;
}

TEST(PositionCells, AreFewWherePositionsAreSmooth) {
  const Position x = [](double across, double down) { return 3 + 1.5 * across - 0.1 * down; };
  const Position y = [](double across, double down) {
    return 7 + 0.1 * across + 1.5 * down + 1e-5 * down * down;
  };
  Image image(x, y);
  const std::vector<PositionCell> cells = CheckedCells(image, x, y);
  ASSERT_EQ(cells.size(), 4U);
  EXPECT_LT(image.asked, 100U);
  EXPECT_NEAR(cells[0].acrossX, 1.5, 1e-6);
  EXPECT_NEAR(cells[0].acrossY, 0.1, 1e-6);
  EXPECT_NEAR(cells[0].downX, -0.1, 1e-6);
  EXPECT_NEAR(cells[0].downY, 1.5, 0.01);
}

TEST(PositionCells, AreSmallerWherePositionsAreNot) {
  const Position x = [](double across, double) { return across + 2 * std::sin(across / 20); };
  const Position y = [](double, double down) { return down; };
  Image image(x, y);
  const std::vector<PositionCell> cells = CheckedCells(image, x, y);
  EXPECT_GT(cells.size(), 64U);
  EXPECT_LT(cells.size(), 10000U);
}

TEST(PositionCells, FollowAKink) {
  const Position x = [](double across, double) { return across < 100.3 ? across : 2 * across - 100.3; };
  const Position y = [](double, double down) { return down; };
  Image image(x, y);
  CheckedCells(image, x, y);
}

TEST(PositionCells, EndWhereThereAreNoPositions) {
  const Position x = [](double across, double) {
    return across < 64 ? across : std::numeric_limits<double>::quiet_NaN();
  };
  const Position y = [](double, double down) { return down; };
  Image image(x, y);
  for (const PositionCell& cell : CheckedCells(image, x, y)) EXPECT_LT(cell.left, 64);
  const Position none = [](double, double) { return std::numeric_limits<double>::infinity(); };
  Image nowhere(none, none);
  EXPECT_TRUE(PositionCellsOf(kTile, std::ref(nowhere)).empty());
  EXPECT_LT(nowhere.asked, 100U);
}

}  // namespace
}  // namespace tiler
