// Compares the georeference reader with the gdaltransform program, on references from everywhere.

#include <gtest/gtest.h>
#include <cstdio>

#include <memory>
#include <sstream>

#include "job/georeference.h"
#include "support/rasters.h"
#include "support/temporary_folder.h"

namespace {

struct Point {
  double x = 0.0;
  double y = 0.0;
};

Point RunGdalTransform(const std::string& from, const std::string& to, const Point& point) {
  std::ostringstream command;
  command.precision(17);
  command << "echo " << point.x << " " << point.y << " | gdaltransform -output_xy -s_srs " << from
          << " -t_srs " << to;
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.str().c_str(), "r"), pclose);
  Point result;
  EXPECT_EQ(fscanf(pipe.get(), "%lf %lf", &result.x, &result.y), 2) << command.str();
  return result;
}

struct Place {
  const char* name;
  int epsg;
  double left;
  double top;
  double pixel;  // in the unit of the reference
};

class Agreement : public testing::TestWithParam<Place> {};

TEST_P(Agreement, WithinAMillimetre) {
  const Place& place = GetParam();
  RasterRecipe recipe;
  recipe.epsg = place.epsg;
  recipe.geoTransform = {place.left, place.pixel, 0, place.top, 0, -place.pixel};
  TemporaryFolder folder;
  MakeRaster(folder.Path("a.tif"), recipe);
  CTifData data;
  ASSERT_TRUE(ReadTifData(folder.Path("a.tif"), data));
  EXPECT_EQ(data.m_strSourceEPSG, "EPSG:" + std::to_string(place.epsg));
  EXPECT_NE(data.m_strTargetEPSG, data.m_strSourceEPSG);

  for (const TifCorner& corner : data.m_vCorners) {
    const Point source{place.left + corner.dfPixel * place.pixel, place.top - corner.dfLine * place.pixel};
    const Point geographic = RunGdalTransform(data.m_strSourceEPSG, "EPSG:4326", source);
    // A millimetre is about 9e-9 degrees of latitude.
    EXPECT_NEAR(corner.dfLon, geographic.x, 9e-9);
    EXPECT_NEAR(corner.dfLat, geographic.y, 9e-9);
    const Point zone = RunGdalTransform("EPSG:4326", data.m_strTargetEPSG, geographic);
    EXPECT_NEAR(corner.dfEasting, zone.x, 1e-3);
    EXPECT_NEAR(corner.dfNorthing, zone.y, 1e-3);
  }
}

INSTANTIATE_TEST_SUITE_P(
    References, Agreement,
    testing::Values(
        Place{"Italy", 3003, 1500000, 5000000, 0.5}, Place{"GreatBritain", 27700, 530000, 180000, 0.25},
        Place{"SouthAfrica", 2048, -53000, -3756000, 1.0}, Place{"Egypt", 22992, 640000, 810000, 1.0},
        Place{"HongKong", 2326, 835000, 820000, 0.2}, Place{"India", 7755, 4000000, 4000000, 2.0},
        Place{"Australia", 28355, 320000, 5812000, 0.5}, Place{"NewZealand", 2193, 1750000, 5430000, 0.5},
        Place{"NewYorkFeet", 2263, 980000, 200000, 1.0}, Place{"Brazil", 31985, 288776.25, 9120760.75, 28.5},
        Place{"Antarctica", 3031, 1300000, -1300000, 5.0}, Place{"Geographic", 4326, 100.5, -7.25, 1e-5}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
