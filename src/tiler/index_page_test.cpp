#include "tiler/index_page.h"

#include <gtest/gtest.h>

#include "tiler/map_page.h"

namespace tiler {
namespace {

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::string PageOf(const std::string& title, double left = 1000000.5,
                   const PageDocuments& documents = {"a.kml", ""}) {
  const Pyramid pyramid({512, 300, left, 2000000.25, 4.7, -4.7});
  return MapPage(pyramid, title, documents, TileKinds(pyramid, TileFormat::kPng));
}

MapDescription MapOf(const std::string& title, const std::string& folder, double left = 1000000.5) {
  const auto map = DescriptionIn(PageOf(title, left), folder);
  EXPECT_TRUE(map) << title;
  return map.value_or(MapDescription());
}

TEST(DescriptionIn, IsWhatTheMapsPageSays) {
  for (const std::string& title :
       std::vector<std::string>{"plain", "a \"b\" \\ & <!--</script> @MAPS@ \t\xC3\xA4", ""}) {
    const MapDescription map = MapOf(title, "tile_0");
    EXPECT_EQ(map.title, title);
    EXPECT_EQ(map.folder, "tile_0");
    EXPECT_NEAR(map.degrees.west, 8.98, 0.01);
    EXPECT_NEAR(map.degrees.north, 17.7, 0.1);
    EXPECT_TRUE(map.json.starts_with("{\"title\": \"") && map.json.ends_with("}}")) << map.json;
  }
}

TEST(DescriptionIn, IsNothingOfAnyOtherPage) {
  const std::string page = PageOf("t");
  for (const std::string& text :
       {std::string(), std::string("<html></html>"), page.substr(0, page.find("\"finest\"")),
        std::string("<script type=\"application/json\" id=\"map-data\">{\"title\": \"t</script>"),
        std::string("<script type=\"application/json\" id=\"map-data\">{\"title\": \"t\"}</script>"),
        std::string("<script type=\"application/json\" id=\"map-data\">{\"title\": \"\\u00</script>")}) {
    EXPECT_FALSE(DescriptionIn(text, "f")) << text;
  }
}

TEST(TitleOfAll, IsWhatTitlesHaveInCommon) {
  EXPECT_EQ(TitleOfAll({MapOf("North_field_0", "a"), MapOf("North_field_1", "b")}), "North_field");
  for (const std::string& other :
       std::vector<std::string>{"South_1", "North_field", "North_field_", "_1", "North_field_x", "a.tif"}) {
    EXPECT_EQ(TitleOfAll({MapOf("North_field_0", "a"), MapOf(other, "b")}), "Maps") << other;
  }
  EXPECT_EQ(TitleOfAll({}), "Maps");
}

TEST(IndexPage, HoldsAllMaps) {
  const std::string page = IndexPage({MapOf("</script>_0", "tile_0"), MapOf("</script>_1", "a \"b\"<")});
  EXPECT_TRUE(Has(page, "<title>&lt;/script&gt;</title>"));
  EXPECT_TRUE(Has(page, "[{\"folder\": \"tile_0\", \"title\": \"\\u003c/script>_0\","));
  EXPECT_TRUE(Has(page, ",\n{\"folder\": \"a \\\"b\\\"\\u003c\", \"title\": \"\\u003c/script>_1\","));
  EXPECT_TRUE(IsIndexPage(page));
  EXPECT_FALSE(IsIndexPage(PageOf("t")));
}

TEST(IndexKml, LeadsToTheDocumentsOfAllMaps) {
  const std::string text = IndexKml({MapOf("N & S_0", "tile_0"), MapOf("N & S_1", "tile_1", 1200000)},
                                    "googleearth_loc.kml", "http://x/a&b/");
  EXPECT_TRUE(Has(text, "<name>N &amp; S</name>"));
  EXPECT_TRUE(Has(text,
                  "<name>N &amp; S_1</name>\n      <Link>\n        <href>http://x/a&amp;b/tile_1/"
                  "googleearth_loc.kml</href>"));
  // From the west of the one to the east of the other.
  EXPECT_TRUE(Has(text, "<longitude>9.89227")) << text;
}

TEST(IndexKml, LeavesOutMapsWithoutDocuments) {
  const MapDescription without =
      DescriptionIn(PageOf("W", 1000000.5, {}), "tile_1").value_or(MapDescription());
  EXPECT_FALSE(without.hasDocuments);
  EXPECT_TRUE(MapOf("N", "tile_0").hasDocuments);
  const std::string text = IndexKml({MapOf("N", "tile_0"), without}, "a.kml", "");
  EXPECT_TRUE(Has(text, "tile_0/a.kml"));
  EXPECT_FALSE(Has(text, "tile_1"));
}

}  // namespace
}  // namespace tiler
