#include "tiler/map_kml.h"

#include <gtest/gtest.h>

namespace tiler {
namespace {

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::string Limits(int least, int most) {
  return "<minLodPixels>" + std::to_string(least) + "</minLodPixels>\n        <maxLodPixels>" +
         std::to_string(most) + "</maxLodPixels>";
}

ShownTile Finest(const TileId& tile, TileKind kind = TileKind::kPng) {
  return {tile, kind, false, true, false};
}

TEST(MapTileKml, ShowsTheFinestTilesForEver) {
  const std::string text = MapTileKml({Finest({18, 139430, 172265})}, {});
  EXPECT_TRUE(Has(text, "<name>18/139430/172265</name>"));
  EXPECT_TRUE(Has(text, Limits(128, -1)));
  EXPECT_TRUE(Has(text, "<drawOrder>36</drawOrder>\n      <Icon>\n        <href>172265.png</href>"));
  EXPECT_FALSE(Has(text, "NetworkLink"));
  EXPECT_TRUE(text.ends_with("  </Document>\n</kml>\n"));
}

TEST(MapTileKml, ShowsTheTilesBelowEachInItsRegion) {
  const std::string text = MapTileKml({{{3, 0, 5}, TileKind::kJpeg, false, false, false},
                                       Finest({4, 0, 11}),
                                       Finest({4, 1, 10}, TileKind::kJpeg)},
                                      {});
  EXPECT_TRUE(Has(text, "<href>5.jpg</href>"));
  EXPECT_TRUE(Has(text, "<href>../../4/0/11.png</href>"));
  EXPECT_TRUE(Has(text, "<href>../../4/1/10.jpg</href>"));
  EXPECT_TRUE(
      Has(text,
          "        <maxLodPixels>512</maxLodPixels>\n      </Lod>\n    </Region>\n    <GroundOverlay>\n"
          "      <drawOrder>7</drawOrder>"));
  EXPECT_TRUE(Has(text,
                  "          <maxLodPixels>-1</maxLodPixels>\n        </Lod>\n      </Region>\n"
                  "      <drawOrder>8</drawOrder>"));
}

TEST(MapTileKml, HidesATileBelowItsFinerOnes) {
  const std::vector<TileId> finer = {{4, 0, 11}, {4, 1, 10}};
  const std::string opaque = MapTileKml({{{3, 0, 5}, TileKind::kPng, false, false, false}}, finer);
  EXPECT_TRUE(Has(opaque, Limits(128, 512)));
  EXPECT_TRUE(Has(opaque, "<href>../../4/0/11.kml</href>"));
  EXPECT_TRUE(Has(opaque, "<href>../../4/1/10.kml</href>"));
  // Both would be seen at the same time.
  EXPECT_TRUE(Has(MapTileKml({{{3, 0, 5}, TileKind::kPng, false, false, true}}, finer), Limits(128, 256)));
}

TEST(MapTileKml, ShowsTheCoarsestTilesFromAfar) {
  EXPECT_TRUE(Has(MapTileKml({{{3, 0, 5}, TileKind::kPng, true, true, false}}, {}), Limits(16, -1)));
}

TEST(BeginsFile, IsEachSecondLevelFromTheFinestAndTheCoarsest) {
  const auto files = [](int coarsest, int finest) {
    std::vector<int> levels;
    for (int level = coarsest; level <= finest; ++level) {
      if (BeginsFile(level, coarsest, finest)) levels.push_back(level);
    }
    return levels;
  };
  EXPECT_EQ(files(14, 19), (std::vector{14, 16, 18}));
  EXPECT_EQ(files(14, 18), (std::vector{14, 15, 17}));
  EXPECT_EQ(files(14, 15), (std::vector{14}));
  EXPECT_EQ(files(14, 14), (std::vector{14}));
}

TEST(MapRootKml, LooksAtTheMapFromAbove) {
  // At the equator, three times as wide as it is high.
  const std::string text = MapRootKml("a <b>", "http://x/é&/", {{3, 0, 5}}, {10, -0.005, 10.03, 0.005});
  EXPECT_TRUE(Has(text, "<name>a &lt;b&gt;</name>"));
  EXPECT_TRUE(Has(text, "<longitude>10.01500000</longitude>"));
  EXPECT_TRUE(Has(text, "<latitude>0.00000000</latitude>"));
  EXPECT_TRUE(Has(text, "<range>4341</range>")) << text;  // 1.3 times 3,340 m
  EXPECT_TRUE(Has(text, "<href>http://x/é&amp;/3/0/5.kml</href>"));
  EXPECT_TRUE(Has(text, "<minLodPixels>16</minLodPixels>"));
  EXPECT_TRUE(text.ends_with("</kml>"));
  EXPECT_TRUE(Has(MapRootKml("t", "", {}, {10, 50, 10.0001, 50.0001}), "<range>100</range>"));
}

TEST(IsTranslucent, IsWhatIsHalfOpaqueInGoodPart) {
  Tile tile(kTilePixels);
  EXPECT_FALSE(IsTranslucent(tile));
  tile[0].alpha = 1;
  EXPECT_TRUE(IsTranslucent(tile));
  for (std::size_t i = 0; i < tile.size() / 2; ++i) tile[i].alpha = 255;
  EXPECT_FALSE(IsTranslucent(tile));
  // As many as a seam has.
  for (std::size_t i = 0; i < std::size_t{4} * kTileSize; ++i) tile[i].alpha = 100;
  EXPECT_FALSE(IsTranslucent(tile));
  for (std::size_t i = 0; i < std::size_t{32} * kTileSize; ++i) tile[i].alpha = 254;
  EXPECT_TRUE(IsTranslucent(tile));
}

}  // namespace
}  // namespace tiler
