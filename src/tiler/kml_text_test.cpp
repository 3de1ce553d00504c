#include "tiler/kml_text.h"

#include <gtest/gtest.h>

namespace tiler {
namespace {

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(TileKml, ShowsATileForEverWhereNothingIsFiner) {
  const std::string text = TileKml({18, 139430, 172265}, {});
  EXPECT_EQ(text.rfind("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<kml ", 0), 0U);
  EXPECT_TRUE(Has(text, "<name>18/139430/172265.kml</name>"));
  EXPECT_TRUE(
      Has(text, "        <minLodPixels>128</minLodPixels>\n        <maxLodPixels>-1</maxLodPixels>\n"));
  EXPECT_TRUE(Has(text, "<drawOrder>36</drawOrder>\n      <Icon>\n        <href>172265.png</href>"));
  EXPECT_FALSE(Has(text, "NetworkLink"));
  EXPECT_TRUE(text.ends_with("    </GroundOverlay>\n      </Document>\n</kml>\n    "));
}

TEST(TileKml, LeadsToFinerTiles) {
  const std::string text = TileKml({3, 0, 5}, {{4, 0, 11}, {4, 1, 10}});
  EXPECT_TRUE(Has(text, "<maxLodPixels>2048</maxLodPixels>"));
  EXPECT_TRUE(Has(text, "<drawOrder>7</drawOrder>")) << "the first column of the world";
  EXPECT_TRUE(Has(text, "    </GroundOverlay>\n\n    <NetworkLink>\n      <name>4/0/11.png</name>"));
  EXPECT_TRUE(Has(text, "<href>../../4/1/10.kml</href>"));
  EXPECT_TRUE(Has(text, "    </NetworkLink>\n              </Document>"));
}

TEST(TileKml, TellsWhereATileLiesWithFourteenDecimals) {
  EXPECT_TRUE(Has(TileKml({1, 1, 1}, {}),
                  "        <south>0.00000000000000</south>\n        <east>180.00000000000000</east>\n"));
}

TEST(RootKml, LeadsToTheCoarsestTiles) {
  const std::string text = RootKml("Map", "../maps/", {{3, 0, 5}, {3, 1, 5}});
  EXPECT_TRUE(Has(text, "    <name>Map</name>\n    <description></description>"));
  EXPECT_TRUE(Has(text, "<href>../maps/3/0/5.kml</href>"));
  EXPECT_TRUE(Has(text, "<href>../maps/3/1/5.kml</href>"));
  EXPECT_FALSE(Has(text, "GroundOverlay"));
  EXPECT_TRUE(text.ends_with("</kml>")) << "whoever takes it line by line would take an empty one more";
}

TEST(RootKml, EscapesWhatXmlKeepsForItself) {
  const std::string text = RootKml("a & \"b\" <c>\x01\t", "../d&'e/", {{0, 0, 0}});
  EXPECT_TRUE(Has(text, "<name>a &amp; &quot;b&quot; &lt;c&gt;\t</name>"));
  EXPECT_TRUE(Has(text, "<href>../d&amp;'e/0/0/0.kml</href>"));
}

}  // namespace
}  // namespace tiler
