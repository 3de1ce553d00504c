#include "batch/map_extent.h"

#include <gtest/gtest.h>

namespace {

std::vector<TifCorner> Corners(double west, double south, double east, double north) {
  return {{0, 0, west, north}, {0, 80, west, south}, {100, 0, east, north}, {100, 80, east, south}};
}

TEST(MapExtent, HoldsWhatLiesWithinTheMap) {
  EXPECT_EQ(FindExtentProblem(Corners(9, 45, 9.1, 45.1)), "");
  EXPECT_EQ(FindExtentProblem(Corners(179.9, -85.0511, 180, 85.0511)), "");
  EXPECT_EQ(FindExtentProblem(Corners(-180, 10, -179, 11)), "");
  EXPECT_EQ(FindExtentProblem(Corners(-90, 10, 90, 11)), "");
}

TEST(MapExtent, DoesNotHoldWhatLiesAcrossTheCutOrAroundTheGlobe) {
  const std::string problem =
      "the image reaches across 180 degrees of longitude, where web maps are cut open, or covers more than "
      "half of the globe";
  EXPECT_EQ(FindExtentProblem(Corners(179.9, 10, -179.9, 11)), problem);
  EXPECT_EQ(FindExtentProblem(Corners(179.9, 10, 180.1, 11)), problem);
  EXPECT_EQ(FindExtentProblem(Corners(-180.1, 10, -179.9, 11)), problem);
  EXPECT_EQ(FindExtentProblem(Corners(-180, -90, 180, 90)), problem);
  EXPECT_EQ(FindExtentProblem(Corners(-91, 10, 90, 11)), problem);
}

TEST(MapExtent, DoesNotHoldTheRegionsOfThePoles) {
  const std::string problem = "the image reaches beyond 85.05 degrees of latitude, where web maps end";
  EXPECT_EQ(FindExtentProblem(Corners(9, 85, 9.1, 85.1)), problem);
  EXPECT_EQ(FindExtentProblem(Corners(9, -85.1, 9.1, -85)), problem);
}

}  // namespace
