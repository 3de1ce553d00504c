#include "tiler/pyramid.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tiler {
namespace {

constexpr int kLevel = 18;
constexpr TileId kTile = {kLevel, 139430, 172265};

// An image of whole tiles of the level, each with 256 pixels, whose upper left tile is kTile.
MapImage OfTiles(int columns, int rows) {
  const Bounds corner = TileBounds(kTile);
  const double pixel = Resolution(kLevel);
  return {columns * kTileSize, rows * kTileSize, corner.west, corner.north, pixel, -pixel};
}

void ExpectRange(const TileRange& range, int west, int south, int east, int north) {
  EXPECT_EQ(range.west, west);
  EXPECT_EQ(range.south, south);
  EXPECT_EQ(range.east, east);
  EXPECT_EQ(range.north, north);
}

TEST(Pyramid, ReachesFromOneTileToTheImagesOwnPixels) {
  const Pyramid pyramid(OfTiles(8, 3));
  EXPECT_EQ(pyramid.Finest(), kLevel);
  EXPECT_EQ(pyramid.Coarsest(), kLevel - 3);
}

TEST(Pyramid, HasOneLevelForAPixel) {
  const Pyramid pyramid({1, 1, 1000000, 2000000, 0.3, -0.3});
  EXPECT_EQ(pyramid.Coarsest(), pyramid.Finest());
  EXPECT_EQ(pyramid.Finest(), 26) << "whose tiles are about as small as the image";
}

// By the rule for positions between two tiles, which gdal2tiles has.
TEST(Pyramid, BeginsOneTileEarlierAtTheEdgeOfATile) {
  const Pyramid pyramid(OfTiles(2, 2));
  const TileRange& range = pyramid.Range(kLevel);
  EXPECT_LE(range.west, kTile.column);
  EXPECT_GE(range.west, kTile.column - 1);
  EXPECT_EQ(range.east, kTile.column + 1);
  EXPECT_EQ(range.north, kTile.row);
}

TEST(Pyramid, EndsWithTheWorld) {
  const double edge = 20037508.342789244;
  const Pyramid pyramid({1024, 1024, -edge, edge, edge / 512, -edge / 512});
  EXPECT_EQ(pyramid.Coarsest(), 0);
  EXPECT_EQ(pyramid.Finest(), 2);
  ExpectRange(pyramid.Range(2), 0, 0, 3, 3);
  EXPECT_EQ(pyramid.TileCount(), 1 + 4 + 16);
}

TEST(Pyramid, IsCutWhereTheMapEnds) {
  const Pyramid pyramid({100, 100, -25e6, 25e6, 5e5, -5e5});
  ExpectRange(pyramid.Range(1), 0, 0, 1, 1);
  const Bounds degrees = pyramid.Degrees();
  EXPECT_EQ(degrees.west, -180);
  EXPECT_EQ(degrees.south, -85.05112878);
  EXPECT_EQ(degrees.east, 180);
  EXPECT_EQ(degrees.north, 85.05112878);
}

TEST(Pyramid, ReadsAWindowOfTheImageForEachTile) {
  MapImage image = OfTiles(2, 2);
  image.left -= 10.25 * image.pixelWidth;  // the tile begins in the eleventh column
  const TileQuery query = Pyramid(image).QueryOf(kTile);
  EXPECT_EQ(query.x, 10);
  EXPECT_EQ(query.y, 0);
  EXPECT_EQ(query.width, kTileSize);
  EXPECT_EQ(query.height, kTileSize);
  EXPECT_EQ(query.queryX, 0);
  EXPECT_EQ(query.queryWidth, kQuerySize);
}

TEST(Pyramid, CutsWhatSticksOutOfTheImage) {
  MapImage image = OfTiles(1, 1);
  image.left += 64.5 * image.pixelWidth;
  image.width = 100;
  image.height = 128;
  const TileQuery query = Pyramid(image).QueryOf(kTile);
  EXPECT_EQ(query.x, 0);
  EXPECT_EQ(query.width, 100);
  EXPECT_EQ(query.queryX, 256) << "a quarter of the tile is left of the image";
  EXPECT_EQ(query.queryWidth, 400);
  EXPECT_EQ(query.height, 128);
  EXPECT_EQ(query.queryHeight, 512);
}

// Of the tile before an image that begins exactly at the edge of one.
TEST(Pyramid, RoundsPositionsOutsideTowardsTheImage) {
  TileId before = kTile;
  --before.column;
  const TileQuery query = Pyramid(OfTiles(1, 1)).QueryOf(before);
  EXPECT_EQ(query.x, 0);
  EXPECT_EQ(query.width, 1);
  EXPECT_EQ(query.queryX, 1020);
  EXPECT_EQ(query.queryWidth, 4);
}

}  // namespace
}  // namespace tiler
