#include "job/input_summary.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using tiler::TileFormat;

// In UTM zone 32 north, upper left corner at 600,000 east and 5,540,000 north.
CTifData Photo(double width, double height, double metres,
               const std::vector<std::pair<double, double>>& degrees) {
  CTifData data;
  data.m_strSourceEPSG = data.m_strTargetEPSG = "EPSG:32632";
  const std::pair<double, double> places[] = {{0, 0}, {0, height}, {width, 0}, {width, height}};
  for (size_t i = 0; i < degrees.size(); ++i) {
    const auto [column, row] = places[i];
    data.m_vCorners.push_back(
        {column, row, degrees[i].first, degrees[i].second, 600000 + column * metres, 5540000 - row * metres});
  }
  return data;
}

CTifData Small() {
  return Photo(600, 500, 0.5,
               {{10.395478293, 50.003923941},
                {10.395413210, 50.001676096},
                {10.399663407, 50.003873526},
                {10.399598130, 50.001625685}});
}
CTifData Large() {
  return Photo(12000, 9000, 0.05,
               {{10.395478293, 50.003923941},
                {10.395361150, 49.999877820},
                {10.403848510, 50.003822959},
                {10.403730665, 49.999776852}});
}

// What the tile engine makes of such images.
TEST(ForecastOf, TellsTheLevelsAndTilesThatThereWillBe) {
  const MapForecast small = ForecastOf(Small(), TileFormat::kPng);
  EXPECT_EQ(small.coarsest, 16);
  EXPECT_EQ(small.finest, 17);
  EXPECT_EQ(small.tiles, 8);
  const MapForecast large = ForecastOf(Large(), TileFormat::kPng);
  EXPECT_EQ(large.coarsest, 15);
  EXPECT_EQ(large.finest, 20);
  EXPECT_NEAR(static_cast<double>(large.tiles), 723, 10);
}

TEST(ForecastOf, TellsHowMuchSmallerSmallTilesAre) {
  const double exact = ForecastOf(Large(), TileFormat::kPng).bytes;
  const double small = ForecastOf(Large(), TileFormat::kAuto).bytes;
  EXPECT_GT(exact, 40e6);
  EXPECT_LT(exact, 90e6);
  EXPECT_LT(small, exact / 2);
  EXPECT_GT(small, exact / 7);
}

TEST(ForecastOf, IsNothingOfAnImageWithoutAnExtent) {
  EXPECT_EQ(ForecastOf(CTifData(), TileFormat::kPng).tiles, 0);
  CTifData point = Small();
  for (TifCorner& corner : point.m_vCorners) corner = {600, 500, 10, 50, 600000, 5540000};
  EXPECT_EQ(ForecastOf(point, TileFormat::kPng).tiles, 0);
  point.m_vCorners.back().dfLat = NAN;
  EXPECT_EQ(ForecastOf(point, TileFormat::kPng).tiles, 0);
}

TEST(SummaryOf, SaysWhatToDoFirst) {
  EXPECT_EQ(SummaryOf({}, TileFormat::kPng),
            "Choose an orthophoto, or tick \"Pick Folder\" and choose a folder of them.\n"
            "Then name a target folder and press Start.");
  EXPECT_EQ(SummaryOf({CTifData()}, TileFormat::kPng), SummaryOf({}, TileFormat::kPng));
}

TEST(SummaryOf, TellsOfOneOrthophoto) {
  const std::string text = SummaryOf({Large()}, TileFormat::kPng);
  EXPECT_TRUE(
      text.starts_with("12,000 x 9,000 pixels of 0.05 m, EPSG:32632 (UTM zone 32 N)\n"
                       "The map: zoom levels 15 to 20, about 7"))
      << text;
  CTifData other = Small();
  other.m_strSourceEPSG = "EPSG:31467";
  other.m_strTargetEPSG = "EPSG:32732";
  EXPECT_TRUE(SummaryOf({other}, TileFormat::kPng)
                  .starts_with("600 x 500 pixels of 0.5 m, EPSG:31467, to be brought into UTM zone 32 S\n"));
  other.m_strTargetEPSG = "EPSG:5041";
  EXPECT_NE(SummaryOf({other}, TileFormat::kPng).find("to be brought into EPSG:5041\n"), std::string::npos);
}

TEST(SummaryOf, TellsOfSeveralTogether) {
  const std::string text = SummaryOf({Small(), Large(), CTifData()}, TileFormat::kPng);
  EXPECT_TRUE(
      text.starts_with("2 orthophotos with pixels of 0.05 to 0.5 m, EPSG:32632\n"
                       "The maps: zoom levels 15 to 20, about 7"))
      << text;
  CTifData other = Small();
  other.m_strSourceEPSG = "EPSG:31467";
  EXPECT_TRUE(SummaryOf({Small(), other}, TileFormat::kPng)
                  .starts_with("2 orthophotos with pixels of 0.5 m, EPSG:31467 and other systems\n"));
}

TEST(SummaryOf, TellsLargeMapsInGigabytes) {
  const std::vector<CTifData> many(40, Large());
  EXPECT_NE(SummaryOf(many, TileFormat::kPng).find(" GB"), std::string::npos);
  EXPECT_NE(SummaryOf({Small()}, TileFormat::kPng).find(" MB"), std::string::npos);
}

}  // namespace
