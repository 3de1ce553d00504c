#include "tiler/tile_plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace tiler {
namespace {

constexpr int kLevel = 18;
constexpr TileId kCorner = {kLevel, 139430, 172265};

// Its finest level has so many columns and rows and no more than one of each besides.
Pyramid OfTiles(int columns, int rows) {
  const Bounds corner = TileBounds(kCorner);
  const double pixel = Resolution(kLevel);
  return Pyramid({columns * kTileSize - 8, rows * kTileSize - 8, corner.west + 4 * pixel,
                  corner.north - 4 * pixel, pixel, -pixel});
}

std::vector<TileId> AllTiles(const Pyramid& pyramid) {
  std::vector<TileId> tiles;
  for (int level = pyramid.Coarsest(); level <= pyramid.Finest(); ++level) {
    const TileRange& range = pyramid.Range(level);
    for (int column = range.west; column <= range.east; ++column) {
      for (int row = range.south; row <= range.north; ++row) tiles.push_back({level, column, row});
    }
  }
  return tiles;
}

TEST(TilePlan, OfAWholeRunHasAllTiles) {
  for (const auto& [columns, rows] : {std::pair(1, 1), {3, 2}, {16, 16}, {21, 5}, {2, 40}}) {
    const Pyramid pyramid = OfTiles(columns, rows);
    for (const int levels : {0, 1, 2}) {
      const TilePlan plan(pyramid, levels);
      EXPECT_EQ(plan.TileCount(), pyramid.TileCount());
      for (const TileId& tile : AllTiles(pyramid)) EXPECT_TRUE(plan.Makes(tile));
    }
  }
}

TEST(TilePlan, MakesNothingThatThePyramidDoesNotHave) {
  const Pyramid pyramid = OfTiles(3, 2);
  const TilePlan plan(pyramid, 2);
  EXPECT_FALSE(plan.Makes({20240510, 1, 1}));
  EXPECT_FALSE(plan.Makes({pyramid.Coarsest() - 1, 0, 0}));
  EXPECT_FALSE(plan.Makes({kLevel, 1, 1}));
}

TEST(TilePlan, GoesThroughTheImageFromTheNorth) {
  const Pyramid pyramid = OfTiles(21, 13);
  const TilePlan plan(pyramid, 2);
  const std::vector<TileId>& units = plan.Units();
  const TileRange& range = pyramid.Range(kLevel - 2);
  ASSERT_EQ(units.size(), static_cast<std::size_t>(range.Count()));
  EXPECT_EQ(units.front(), (TileId{kLevel - 2, range.west, range.north}));
  EXPECT_EQ(units[1], (TileId{kLevel - 2, range.west + 1, range.north}));
  EXPECT_EQ(units.back(), (TileId{kLevel - 2, range.east, range.south}));
}

// The shares that make each tile; those that nobody makes are not there.
std::map<TileId, std::vector<int>> MakersOf(const Pyramid& pyramid, int levels, int count) {
  std::map<TileId, std::vector<int>> makers;
  for (int index = 0; index < count; ++index) {
    const TilePlan plan(pyramid, levels, Share{index, count});
    std::int64_t made = 0;
    for (const TileId& tile : AllTiles(pyramid)) {
      if (!plan.Makes(tile)) continue;
      ++made;
      makers[tile].push_back(index);
    }
    EXPECT_EQ(plan.TileCount(), made);
  }
  return makers;
}

// Of shares that know nothing of one another no two make the same tile, and none is left out but those for
// which tiles of several are needed.
void ExpectOneMakerAtMost(const Pyramid& pyramid, int levels, int count) {
  const auto makers = MakersOf(pyramid, levels, count);
  const TilePlan whole(pyramid, levels);
  const auto makersOf = [&](const TileId& tile) {
    const auto found = makers.find(tile);
    return found == makers.end() ? std::vector<int>() : found->second;
  };
  for (const TileId& tile : AllTiles(pyramid)) {
    const std::vector<TileId> finer = whole.Finer(tile);
    const bool ofOne = std::all_of(finer.begin(), finer.end(), [&](const TileId& each) {
      return !makersOf(each).empty() && makersOf(each) == makersOf(finer.front());
    });
    EXPECT_EQ(makersOf(tile).size(), ofOne ? 1U : 0U) << tile.level << " " << tile.column << " " << tile.row;
  }
}

TEST(TilePlan, HasEveryTileInOneShareAtMost) {
  for (const auto& [columns, rows] : {std::pair(1, 1), {16, 16}, {21, 37}, {50, 3}}) {
    const Pyramid pyramid = OfTiles(columns, rows);
    for (const auto& [count, levels] : {std::pair(1, 2), {2, 2}, {3, 0}, {3, 2}, {7, 1}, {64, 2}}) {
      ExpectOneMakerAtMost(pyramid, levels, count);
    }
  }
}

TEST(TilePlan, GivesSharesOfEqualSize) {
  const Pyramid pyramid = OfTiles(65, 66);
  for (int index = 0; index < 7; ++index) {
    const std::int64_t tiles = TilePlan(pyramid, 2, Share{index, 7}).TileCount();
    EXPECT_NEAR(static_cast<double>(tiles), static_cast<double>(pyramid.TileCount()) / 7, 40) << "two units";
  }
}

TEST(TilePlan, GivesNeighboursToAShare) {
  // One square of the map's level 8, so that a quarter of it is one of level 9.
  const Bounds corner = TileBounds({14, 8192, 8255});
  const double pixel = Resolution(14);
  const int size = 64 * kTileSize - 8;
  const Pyramid pyramid({size, size, corner.west + 4 * pixel, corner.north - 4 * pixel, pixel, -pixel});
  std::int64_t made = 0;
  for (int index = 0; index < 4; ++index) made += TilePlan(pyramid, 2, Share{index, 4}).TileCount();
  EXPECT_EQ(made, pyramid.TileCount() - (8 - pyramid.Coarsest() + 1)) << "all that a quarter can make";
}

TEST(TilePlan, HasEmptySharesWhereThereAreTooFewTiles) {
  const Pyramid pyramid = OfTiles(1, 1);
  std::size_t units = 0;
  for (int index = 0; index < 7; ++index) units += TilePlan(pyramid, 2, Share{index, 7}).Units().size();
  EXPECT_EQ(units, 1U);
}

}  // namespace
}  // namespace tiler
