#include "tiler/hidden_colour.h"

#include <gtest/gtest.h>

namespace tiler {
namespace {

TEST(PixelOf, TakesGreyForAllChannels) {
  EXPECT_EQ(PixelOf({7}, 255), (Pixel{7, 7, 7, 255}));
  EXPECT_EQ(PixelOf({1, 2, 3}, 0), (Pixel{1, 2, 3, 0}));
}

TEST(Hide, MakesOpaquePixelsOfTheColourTransparent) {
  std::vector<Pixel> pixels = {{1, 2, 3, 255}, {1, 2, 4, 255}, {1, 2, 3, 254}, {1, 2, 3, 0}};
  Hide({1, 2, 3}, pixels);
  EXPECT_EQ(pixels, (std::vector<Pixel>{{1, 2, 3, 0}, {1, 2, 4, 255}, {1, 2, 3, 254}, {1, 2, 3, 0}}));
}

TEST(Hide, DoesNothingWithoutAColour) {
  std::vector<Pixel> pixels = {{0, 0, 0, 255}};
  Hide({}, pixels);
  EXPECT_EQ(pixels.front(), (Pixel{0, 0, 0, 255}));
}

}  // namespace
}  // namespace tiler
