#include "tiler/tile_pixels.h"

#include <gtest/gtest.h>

namespace tiler {
namespace {

constexpr Pixel kRed = {200, 0, 0, 255};
constexpr Pixel kBlue = {0, 0, 101, 55};

Tile Filled(const Pixel& pixel) {
  return Tile(kTilePixels, pixel);
}

// The whole query, of so many pixels of an image of the same size.
TileQuery WholeOf(std::int64_t width, std::int64_t height) {
  return {0, 0, width, height, 0, 0, kQuerySize, kQuerySize};
}

TEST(QueryAxes, ShowEachPixelOfTheWindowInItsTurn) {
  const QueryAxis columns = ColumnsOf(WholeOf(4, 2), 4);
  EXPECT_EQ(columns[0], 0);
  EXPECT_EQ(columns[255], 0);
  EXPECT_EQ(columns[256], 1);
  EXPECT_EQ(columns[1023], 3);
  const QueryAxis rows = RowsOf(WholeOf(4, 2), 2);
  EXPECT_EQ(rows[511], 0);
  EXPECT_EQ(rows[512], 1);
}

TEST(QueryAxes, HaveNothingOutsideTheImage) {
  const TileQuery query = {7, 3, 100, 128, 256, 0, 400, 512};
  const QueryAxis columns = ColumnsOf(query, 107);
  EXPECT_EQ(columns[255], kNoPixel);
  EXPECT_EQ(columns[256], 0) << "of the window";
  EXPECT_EQ(columns[655], 99);
  EXPECT_EQ(columns[656], kNoPixel);
  const QueryAxis rows = RowsOf(query, 131);
  EXPECT_EQ(rows[511], 127);
  EXPECT_EQ(rows[512], kNoPixel);
}

TEST(AveragedTile, IsTheColourOfAWindowOfOneColour) {
  const std::vector<Pixel> window(4, kRed);
  const Tile tile = AveragedTile(window, 2, ColumnsOf(WholeOf(2, 2), 2), RowsOf(WholeOf(2, 2), 2));
  EXPECT_EQ(tile, Filled(kRed));
}

TEST(AveragedTile, RoundsHalvesUpwards) {
  // Two columns of a query of 1024 for each of 512 pixels: two of them in a pixel of the tile.
  std::vector<Pixel> window(512);
  for (int x = 0; x < 512; ++x) window[x] = x % 2 == 0 ? Pixel{1, 0, 3, 255} : Pixel{2, 1, 3, 0};
  const Tile tile = AveragedTile(window, 512, ColumnsOf(WholeOf(512, 1), 512), RowsOf(WholeOf(512, 1), 1));
  EXPECT_EQ(tile.front(), (Pixel{2, 1, 3, 128}));
  EXPECT_EQ(tile.back(), (Pixel{2, 1, 3, 128}));
}

TEST(AveragedTile, FadesIntoWhatIsOutside) {
  const TileQuery query = {0, 0, 1, 1, 2, 0, 1, 4};
  const Tile tile = AveragedTile({kRed}, 1, ColumnsOf(query, 1), RowsOf(query, 1));
  EXPECT_EQ(tile[0], (Pixel{50, 0, 0, 64})) << "a quarter, the colour too";
  EXPECT_EQ(tile[1], Pixel{});
  EXPECT_EQ(tile[kTileSize], Pixel{});
}

TEST(JoinedTile, HasItsPartsWhereTheyLieOnTheMap) {
  const Tile tile = JoinedTile({HalvedTile(Filled(kRed)), Quarter(), Quarter(), HalvedTile(Filled(kBlue))});
  EXPECT_EQ(tile[0], Pixel{}) << "north-west";
  EXPECT_EQ(tile[kTileSize - 1], kBlue) << "north-east";
  EXPECT_EQ(tile[kTilePixels - kTileSize], kRed) << "south-west";
  EXPECT_EQ(tile[kTilePixels - 1], Pixel{}) << "south-east";
}

TEST(HalvedTile, AveragesFourPixelsIntoOne) {
  Tile tile = Filled({10, 20, 30, 255});
  tile[0] = {11, 22, 30, 0};
  tile[kTileSize + 1] = {11, 20, 31, 255};
  const Quarter quarter = HalvedTile(tile);
  ASSERT_EQ(quarter.size(), kTilePixels / 4);
  EXPECT_EQ(quarter[0], (Pixel{11, 21, 30, 191}));
  EXPECT_EQ(quarter[1], (Pixel{10, 20, 30, 255}));
  EXPECT_EQ(JoinedTile({Quarter(), Quarter(), quarter, Quarter()})[0], quarter[0]);
}

}  // namespace
}  // namespace tiler
