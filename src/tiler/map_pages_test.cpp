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
  const std::string google = GoogleMapsPage(Sample(), {"t", ""});
  EXPECT_TRUE(Has(google, "LatLng(" + ShortestText(degrees.south) + ", " + ShortestText(degrees.west) + ")"));
  EXPECT_TRUE(Has(OpenLayersPage(Sample(), {"t", ""}), "extent: [1000000.500000, 1998590.250000,"));
}

TEST(Pages, ShowTheTitleAsItIs) {
  const PageTexts texts = {"a \"b\" & <c> @WEST@ %s", ""};
  for (const std::string& page : {GoogleMapsPage(Sample(), texts), OpenLayersPage(Sample(), texts)}) {
    EXPECT_TRUE(Has(page, "<title>a &quot;b&quot; &amp; &lt;c&gt; @WEST@ %s</title>"));
  }
  EXPECT_TRUE(Has(LeafletPage(Sample(), texts), "innerHTML = \"a \\\"b\\\" & <c> @WEST@ %s\";"));
  EXPECT_TRUE(Has(TileMapResource(Sample(), texts.title, ""),
                  "<Title>a &quot;b&quot; &amp; &lt;c&gt; @WEST@ %s</Title>"));
}

TEST(Pages, LeaveNoMarkOfTheirOwn) {
  for (const std::string& page : {GoogleMapsPage(Sample(), {"t", "k"}), LeafletPage(Sample(), {"t", ""}),
                                  OpenLayersPage(Sample(), {"t", ""})}) {
    for (const char* mark : {"@TITLE@", "@QUOTED_TITLE@", "@WEST@", "@FINEST@", "@MAPS_URL@", "@KEY_HINT@"}) {
      EXPECT_FALSE(Has(page, mark)) << mark;
    }
  }
}

TEST(GoogleMapsPage, HasTheKeyOrSaysWhereItGoes) {
  const std::string with = GoogleMapsPage(Sample(), {"t", "K1"});
  EXPECT_TRUE(Has(with, "<script src='https://maps.googleapis.com/maps/api/js?key=K1'></script>"));
  EXPECT_FALSE(Has(with, "INSERT_YOUR_KEY_HERE"));
  const std::string without = GoogleMapsPage(Sample(), {"t", ""});
  EXPECT_TRUE(Has(without, "<script src='https://maps.googleapis.com/maps/api/js'></script>"));
  EXPECT_TRUE(Has(without, "key=INSERT_YOUR_KEY_HERE -->"));
}

TEST(TileMapResource, HasALineForEachLevel) {
  const std::string text = TileMapResource(Sample(), "t", "../a&b/");
  for (int level = Sample().Coarsest(); level <= Sample().Finest(); ++level) {
    EXPECT_TRUE(Has(text, "href=\"../a&amp;b/" + std::to_string(level) + "\" units-per-pixel=\""));
  }
  EXPECT_FALSE(Has(text, "order=\"" + std::to_string(Sample().Finest() + 1) + "\""));
  EXPECT_TRUE(Has(TileMapResource(Pyramid({256, 256, 0, 0, 1e5, -1e5}), "t", ""),
                  "href=\"0\" units-per-pixel=\"156543.03390000000945\" order=\"0\"/>"));
}

}  // namespace
}  // namespace tiler
