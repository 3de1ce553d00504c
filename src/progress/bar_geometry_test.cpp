#include "progress/bar_geometry.h"

#include <gtest/gtest.h>

namespace {

using enum BarDirection;

constexpr BarRect kWide = {0, 0, 200, 24};
constexpr BarRect kTall = {0, 0, 24, 200};

TEST(FilledRect, GrowsToTheRightOrUpwards) {
  struct Case {
    double fraction;
    int length;
  };
  const Case cases[] = {{0.0, 0},     {0.02, 4},  {0.021, 4}, {0.0249, 4},  {0.5, 100},
                        {0.999, 199}, {1.0, 200}, {2.0, 200}, {1e300, 200}, {-0.5, 0}};
  for (const Case& each : cases) {
    EXPECT_EQ(FilledRect(kWide, kHorizontal, each.fraction), (BarRect{0, 0, each.length, 24}))
        << each.fraction;
    EXPECT_EQ(FilledRect(kTall, kVertical, each.fraction), (BarRect{0, 200 - each.length, 24, 200}))
        << each.fraction;
  }
}

TEST(FilledRect, StartsWhereTheClientRectangleStarts) {
  const BarRect client = {10, 20, 110, 70};
  EXPECT_EQ(FilledRect(client, kHorizontal, 0.25), (BarRect{10, 20, 35, 70}));
  EXPECT_EQ(FilledRect(client, kVertical, 0.25), (BarRect{10, 58, 110, 70}));
}

TEST(FilledRect, IsEmptyInAnEmptyBar) {
  EXPECT_EQ(FilledRect({}, kHorizontal, 0.5), BarRect{});
  EXPECT_EQ(FilledRect({}, kVertical, 0.5), BarRect{});
}

TEST(BlockCount, AppearsALittleBeforeTheEndOfABlock) {
  struct Case {
    double fraction;
    int count;
  };
  const Case cases[] = {{-1.0, 0},  {0.0, 0}, {0.005, 0},  {0.006, 1},  {0.02, 1}, {0.021, 1}, {0.061, 1},
                        {0.062, 2}, {0.5, 9}, {0.949, 17}, {0.951, 18}, {1.0, 18}, {2.0, 18},  {1e300, 18}};
  for (const Case& each : cases) EXPECT_EQ(BlockCount(each.fraction), each.count) << each.fraction;
}

TEST(BlockRects, LieTwoPixelsApart) {
  // Blocks of (200 - 18) / 18 = 10.1 pixels.
  EXPECT_EQ(BlockRects(kWide, kHorizontal, 0.15),
            (std::vector<BarRect>{{0, 0, 10, 24}, {12, 0, 22, 24}, {24, 0, 34, 24}}));
  EXPECT_EQ(BlockRects(kTall, kVertical, 0.15),
            (std::vector<BarRect>{{0, 190, 24, 200}, {0, 178, 24, 188}, {0, 166, 24, 176}}));
  EXPECT_TRUE(BlockRects(kWide, kHorizontal, 0.0).empty());
}

TEST(BlockRects, ReachTheEndOfEveryBarThatIsDone) {
  // From 36 pixels on; the blocks of a shorter bar have no length.
  for (int length = 36; length < 1000; ++length) {
    const std::vector<BarRect> wide = BlockRects({0, 0, length, 24}, kHorizontal, 1.0);
    const std::vector<BarRect> tall = BlockRects({0, 0, 24, length}, kVertical, 1.0);
    ASSERT_EQ(wide.size(), 18U);
    ASSERT_EQ(tall.size(), 18U);
    EXPECT_GE(wide.back().right, length - 2) << length;
    EXPECT_LE(tall.back().top, 2) << length;
  }
}

TEST(BlockRects, HaveNoLengthInAShortBar) {
  for (int length : {1, 17, 18, 35}) {
    for (const BarRect& block : BlockRects({0, 0, length, 24}, kHorizontal, 1.0)) {
      EXPECT_EQ(block.right, block.left) << length;
    }
  }
}

TEST(BlockRects, StartWhereTheClientRectangleStarts) {
  const BarRect client = {10, 20, 110, 120};
  EXPECT_EQ(BlockRects(client, kHorizontal, 0.02), (std::vector<BarRect>{{10, 20, 14, 120}}));
  EXPECT_EQ(BlockRects(client, kVertical, 0.02), (std::vector<BarRect>{{10, 116, 110, 120}}));
}

TEST(VerticalText, IsInTheMiddle) {
  EXPECT_EQ(VerticalTextOrigin(kTall, 100, 14), (BarPoint{5, 150}));
  // Odd remainders: half a pixel to the left, and downwards.
  EXPECT_EQ(VerticalTextOrigin(kTall, 101, 15), (BarPoint{4, 151}));
}

TEST(VerticalText, IsCutAtBothEndsWhenItIsTooLong) {
  EXPECT_EQ(VerticalTextOrigin(kTall, 300, 14), (BarPoint{5, 250}));
  // Shifted and not halved: -101 becomes -51.
  EXPECT_EQ(VerticalTextOrigin(kTall, 301, 25), (BarPoint{-1, 251}));
}

}  // namespace
