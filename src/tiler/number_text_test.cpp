#include "tiler/number_text.h"

#include <gtest/gtest.h>

#include <limits>

namespace tiler {
namespace {

TEST(WithDecimals, RoundsToThemWithoutAnExponent) {
  EXPECT_EQ(WithDecimals(0.1, 20), "0.10000000000000000555");
  EXPECT_EQ(WithDecimals(-2.5, 0), "-2");
  EXPECT_EQ(WithDecimals(1e-9, 3), "0.000");
  EXPECT_EQ(WithDecimals(-std::numeric_limits<double>::max(), 14).size(), 1u + 309 + 1 + 14);
}

TEST(ShortestText, IsThatOfPython) {
  const struct {
    double value;
    const char* text;
  } cases[] = {{0.0, "0.0"},
               {-0.0, "-0.0"},
               {-180.0, "-180.0"},
               {0.1, "0.1"},
               {179.99999999999997, "179.99999999999997"},
               {0.0001, "0.0001"},
               {0.00001, "1e-05"},
               {-1.5e-7, "-1.5e-07"},
               {1e15, "1000000000000000.0"},
               {1e16, "1e+16"},
               {123456789012345680.0, "1.2345678901234568e+17"},
               {1e22, "1e+22"},
               {std::numeric_limits<double>::max(), "1.7976931348623157e+308"}};
  for (const auto& each : cases) EXPECT_EQ(ShortestText(each.value), each.text);
}

TEST(Joined, HasTheTextBetweenAnyTwo) {
  EXPECT_EQ(Joined({}, ", "), "");
  EXPECT_EQ(Joined({7}, ", "), "7");
  EXPECT_EQ(Joined({1, 20, -3}, ", "), "1, 20, -3");
}

}  // namespace
}  // namespace tiler
