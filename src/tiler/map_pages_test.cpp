#include "tiler/map_pages.h"

#include <gtest/gtest.h>

#include "tiler/number_text.h"

namespace tiler {
namespace {

// Two levels, 14 and 15, near the equator.
const Pyramid& Sample() {
  static const Pyramid pyramid({512, 300, 1000000.5, 2000000.25, 4.7, -4.7});
  return pyramid;
}

const TileKinds& Exact() {
  static const TileKinds kinds(Sample(), TileFormat::kPng);
  return kinds;
}

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(Pages, TellWhereTheMapIs) {
  const std::string levels =
      "minZoom: " + std::to_string(Sample().Coarsest()) + ", maxZoom: " + std::to_string(Sample().Finest());
  const Bounds degrees = Sample().Degrees();
  const std::string leaflet = LeafletPage(Sample(), {"t", ""});
  EXPECT_TRUE(Has(leaflet, levels));
  EXPECT_TRUE(Has(leaflet, "map.fitBounds([[" + ShortestText(degrees.south) + ", " +
                               ShortestText(degrees.east) + "], [" + ShortestText(degrees.north) + ", " +
                               ShortestText(degrees.west) + "]]);"));
  const std::string google = GoogleMapsPage(Sample(), {"t", ""}, Exact());
  EXPECT_TRUE(Has(google, "LatLng(" + ShortestText(degrees.south) + ", " + ShortestText(degrees.west) + ")"));
  EXPECT_TRUE(Has(OpenLayersPage(Sample(), {"t", ""}, Exact()), "extent: [1000000.500000, 1998590.250000,"));
}

TEST(Pages, ShowTheTitleAsItIs) {
  const PageTexts texts = {"a \"b\" & <c> @WEST@ %s", ""};
  for (const std::string& page :
       {GoogleMapsPage(Sample(), texts, Exact()), OpenLayersPage(Sample(), texts, Exact())}) {
    EXPECT_TRUE(Has(page, "<title>a &quot;b&quot; &amp; &lt;c&gt; @WEST@ %s</title>"));
  }
  EXPECT_TRUE(Has(LeafletPage(Sample(), texts), "innerHTML = \"a \\\"b\\\" & <c> @WEST@ %s\";"));
  EXPECT_TRUE(Has(TileMapResource(Sample(), texts.title, "", Exact()),
                  "<Title>a &quot;b&quot; &amp; &lt;c&gt; @WEST@ %s</Title>"));
}

TEST(Pages, LeaveNoMarkOfTheirOwn) {
  for (const std::string& page :
       {GoogleMapsPage(Sample(), {"t", "k"}, Exact()), LeafletPage(Sample(), {"t", ""}),
        OpenLayersPage(Sample(), {"t", ""}, Exact())}) {
    for (const char* mark : {"@TITLE@", "@QUOTED_TITLE@", "@WEST@", "@FINEST@", "@MAPS_URL@", "@KEY_HINT@",
                             "@TILE_NAME@", "@TILE_URL@", "@TILE_SCRIPTS@"}) {
      EXPECT_FALSE(Has(page, mark)) << mark;
    }
  }
}

TEST(Pages, AskForTilesOfBothKindsWhereThereAreBoth) {
  const std::string exact = GoogleMapsPage(Sample(), {"t", ""}, Exact());
  EXPECT_TRUE(Has(exact, "return zoom+\"/\"+tile.x+\"/\"+tile.y+\".png\";"));
  EXPECT_TRUE(Has(OpenLayersPage(Sample(), {"t", ""}, Exact()), "url: './{z}/{x}/{-y}.png',"));
  TileKinds kinds(Sample(), TileFormat::kAuto);
  kinds.Set({14, 8600, 9009}, TileKind::kPng);
  for (const std::string& page :
       {GoogleMapsPage(Sample(), {"t", ""}, kinds), OpenLayersPage(Sample(), {"t", ""}, kinds)}) {
    EXPECT_FALSE(Has(page, "+\".png\"") || Has(page, "{-y}.png'"));
    EXPECT_TRUE(Has(page, "<script src=\"leaflet/tiles.js\"></script>"));
    EXPECT_TRUE(
        Has(page, "\"tiles\": {\"kinds\": [\"jpg\", \"png\"], \"runs\": {\"14\": [0, 1]}}};</script>"));
    EXPECT_TRUE(Has(page, "Mosaicon.tileName(orthophoto, "));
  }
}

TEST(GoogleMapsPage, HasTheKeyOrSaysWhereItGoes) {
  const std::string with = GoogleMapsPage(Sample(), {"t", "K1"}, Exact());
  EXPECT_TRUE(Has(with, "<script src='https://maps.googleapis.com/maps/api/js?key=K1'></script>"));
  EXPECT_FALSE(Has(with, "INSERT_YOUR_KEY_HERE"));
  const std::string without = GoogleMapsPage(Sample(), {"t", ""}, Exact());
  EXPECT_TRUE(Has(without, "<script src='https://maps.googleapis.com/maps/api/js'></script>"));
  EXPECT_TRUE(Has(without, "key=INSERT_YOUR_KEY_HERE -->"));
}

TEST(TileMapResource, HasALineForEachLevel) {
  const std::string text = TileMapResource(Sample(), "t", "../a&b/", Exact());
  for (int level = Sample().Coarsest(); level <= Sample().Finest(); ++level) {
    EXPECT_TRUE(Has(text, "href=\"../a&amp;b/" + std::to_string(level) + "\" units-per-pixel=\""));
  }
  EXPECT_FALSE(Has(text, "order=\"" + std::to_string(Sample().Finest() + 1) + "\""));
  const Pyramid world({256, 256, 0, 0, 1e5, -1e5});
  EXPECT_TRUE(Has(TileMapResource(world, "t", "", TileKinds(world, TileFormat::kPng)),
                  "href=\"0\" units-per-pixel=\"156543.03390000000945\" order=\"0\"/>"));
}

TEST(TileMapResource, NamesTheTilesOfTheOtherKind) {
  EXPECT_TRUE(Has(TileMapResource(Sample(), "t", "", Exact()),
                  "<TileFormat width=\"256\" height=\"256\" mime-type=\"image/png\" extension=\"png\"/>"));
  TileKinds kinds(Sample(), TileFormat::kAuto);
  EXPECT_FALSE(Has(TileMapResource(Sample(), "t", "", kinds), "OtherTiles"));
  kinds.Set({15, 17202, 18018}, TileKind::kPng);
  const std::string text = TileMapResource(Sample(), "t", "", kinds);
  EXPECT_TRUE(Has(text, "mime-type=\"image/jpeg\" extension=\"jpg\"/>"));
  EXPECT_TRUE(Has(text,
                  "      <OtherTiles xmlns=\"urn:mosaicon:tiles\" mime-type=\"image/png\" "
                  "extension=\"png\">\n        <Runs order=\"15\">1 1</Runs>\n      </OtherTiles>\n"));
}

}  // namespace
}  // namespace tiler
