#include "tiler/mercator.h"

#include <gtest/gtest.h>

#include <vector>

namespace tiler {
namespace {

void ExpectBounds(const Bounds& bounds, const Bounds& expected) {
  EXPECT_EQ(bounds.west, expected.west);
  EXPECT_EQ(bounds.south, expected.south);
  EXPECT_EQ(bounds.east, expected.east);
  EXPECT_EQ(bounds.north, expected.north);
}

// To the last bit, as the GlobalMercator of gdal2tiles computes them.
TEST(Mercator, PutsTilesWhereOthersPutThem) {
  ExpectBounds(TileBounds({0, 0, 0}), {-0x1.31bf8457c1093p+24, -0x1.31bf8457c1093p+24, 0x1.31bf8457c1093p+24,
                                       0x1.31bf8457c1093p+24});
  ExpectBounds(TileBounds({5, 17, 11}), {0x1.31bf8457c1090p+20, -0x1.7e2f656db14b8p+22, 0x1.31bf8457c1090p+21,
                                         -0x1.31bf8457c1094p+22});
  ExpectBounds(TileBounds({18, 139430, 172265}),
               {0x1.37f195d648430p+20, 0x1.805bf40c9908cp+22, 0x1.37fb23d26b010p+20, 0x1.805e578ba1b88p+22});
  ExpectBounds(TileBounds({31, 2147483647, 0}), {0x1.31bf8452fa0b1p+24, -0x1.31bf8457c1093p+24,
                                                 0x1.31bf8457c1093p+24, -0x1.31bf8452fa0b2p+24});
}

TEST(Mercator, TellsTheirDegrees) {
  const Bounds world = TileBoundsInDegrees({0, 0, 0});
  EXPECT_EQ(world.west, -180);
  EXPECT_EQ(world.east, 180);
  EXPECT_NEAR(world.south, -85.0511287798, 1e-10);
  EXPECT_NEAR(world.north, 85.0511287798, 1e-10);
  const Bounds tile = TileBoundsInDegrees({18, 139430, 172265});
  EXPECT_NEAR(tile.south, 0x1.890ef6f71c5a8p+5, 1e-12);
  EXPECT_NEAR(tile.north, 0x1.8910ce1144bf9p+5, 1e-12);
  EXPECT_EQ(tile.west, 0x1.6f4b800000008p+3);
  EXPECT_EQ(tile.east, 0x1.6f56c00000007p+3);
}

TEST(Mercator, HasALevelForEveryPixelSize) {
  const struct {
    double pixelSize;
    int level;
  } cases[] = {{200000, 0}, {156543.03392804098, 0}, {78271.516, 1}, {28.5, 12}, {0.5, 18},
               {0.05, 21},  {0.2985821416974, 19},   {5e-5, 31},     {1e-9, 31}};
  for (const auto& each : cases) EXPECT_EQ(LevelForPixelSize(each.pixelSize), each.level) << each.pixelSize;
  EXPECT_EQ(LevelForPixelSize(Resolution(7)), 7) << "exactly its pixels";
}

TEST(Mercator, NumbersTilesFromTheSouthWest) {
  EXPECT_EQ(TileNumber(0, 0), 0);
  EXPECT_EQ(TileNumber(1, 1), 1);
  EXPECT_EQ(TileNumber(-1, 1), 0);
  EXPECT_EQ(TileNumber(1234567.8, 18), 139147);
  EXPECT_EQ(TileNumber(-20037508.342789244, 3), -1) << "the western edge is of the tile before the first";
  EXPECT_EQ(TileNumber(20037508.342789244, 3), 7);
  EXPECT_EQ(TileNumber(0, 1), 0) << "between two tiles";
}

}  // namespace
}  // namespace tiler
