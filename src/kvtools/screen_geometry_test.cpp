#include "kvtools/screen_geometry.h"

#include <gtest/gtest.h>

namespace {

TEST(EnclosingSize, SpansAllScreens) {
  EXPECT_EQ(EnclosingSize({}), (PixelSize{0, 0}));
  EXPECT_EQ(EnclosingSize({{0, 0, {1920, 1080}}}), (PixelSize{1920, 1080}));
  EXPECT_EQ(EnclosingSize({{0, 0, {1920, 1080}}, {1920, 0, {1920, 1080}}}), (PixelSize{3840, 1080}));
  EXPECT_EQ(EnclosingSize({{0, 0, {1920, 1080}}, {-1280, 200, {1280, 1024}}}), (PixelSize{3200, 1224}));
  EXPECT_EQ(EnclosingSize({{0, 0, {1920, 1080}}, {0, -1200, {1600, 1200}}}), (PixelSize{1920, 2280}));
}

TEST(EnclosingSize, CountsMirroredScreensOnce) {
  EXPECT_EQ(EnclosingSize({{0, 0, {1920, 1080}}, {0, 0, {1920, 1080}}}), (PixelSize{1920, 1080}));
}

TEST(PlaceInMiddle, GrowsWithTheDotsPerInch) {
  const PixelRect area = {0, 0, {1920, 1040}};
  EXPECT_EQ(PlaceInMiddle({400, 300}, 96, area), (PixelRect{760, 370, {400, 300}}));
  EXPECT_EQ(PlaceInMiddle({400, 300}, 144, area), (PixelRect{660, 295, {600, 450}}));
  EXPECT_EQ(PlaceInMiddle({400, 300}, 192, area), (PixelRect{560, 220, {800, 600}}));
  EXPECT_EQ(PlaceInMiddle({401, 301}, 120, area), (PixelRect{709, 332, {501, 376}}));
}

TEST(PlaceInMiddle, UsesTheWorkAreaWhereverItIs) {
  EXPECT_EQ(PlaceInMiddle({400, 300}, 96, {60, 40, {1000, 700}}), (PixelRect{360, 240, {400, 300}}));
}

TEST(PlaceInMiddle, ShrinksInProportionToTheWorkArea) {
  const PixelRect area = {0, 0, {1000, 500}};
  EXPECT_EQ(PlaceInMiddle({2000, 600}, 96, area), (PixelRect{0, 100, {1000, 300}}));
  EXPECT_EQ(PlaceInMiddle({300, 1000}, 96, area), (PixelRect{425, 0, {150, 500}}));
  EXPECT_EQ(PlaceInMiddle({2000, 2000}, 96, area), (PixelRect{250, 0, {500, 500}}));
  EXPECT_EQ(PlaceInMiddle({600, 400}, 192, area), (PixelRect{125, 0, {750, 500}}));
  EXPECT_EQ(PlaceInMiddle({100000, 1}, 96, area), (PixelRect{0, 249, {1000, 1}}));
}

}  // namespace
