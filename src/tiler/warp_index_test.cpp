#include "tiler/warp_index.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tiler {
namespace {

constexpr int kWidth = 3000;
constexpr int kHeight = 2000;

// Of one position.
using Place = std::function<void(double& x, double& y)>;

WarpIndex IndexOf(const Place& place) {
  return {[place](std::vector<double>& xs, std::vector<double>& ys) {
            for (std::size_t i = 0; i < xs.size(); ++i) place(xs[i], ys[i]);
          },
          kWidth, kHeight};
}

// Windows in the middle, at the corners and beyond; also ones that are smaller than a cell.
const PixelWindow kWindows[] = {{0, 0, 300, 270},      {1400, 900, 261, 261}, {2800, 1900, 256, 200},
                                {-100, -50, 257, 129}, {5000, 5000, 40, 40},  {1234, 567, 1, 1},
                                {700, 3, 129, 1},      {10, 1990, 3, 128}};

void ExpectExact(const Place& place) {
  WarpIndex index = IndexOf(place);
  for (const PixelWindow& window : kWindows) {
    EXPECT_EQ(index.Of(window), index.ExactlyOf(window)) << window.x << " " << window.y;
  }
}

TEST(WarpIndex, IsExactWherePositionsAreSmooth) {
  ExpectExact([](double&, double&) {});
  ExpectExact([](double& x, double& y) {
    const double turned = 0.97 * x + 0.11 * y + 0.123456;
    y = 0.95 * y - 0.1 * x + 40;
    x = turned;
  });
  ExpectExact([](double& x, double& y) {
    const double bent = x + 1e-5 * x * y - 3e-6 * y * y;
    y += 2e-6 * x * x;
    x = bent;
  });
  ExpectExact([](double& x, double& y) {
    x = 1500 + 1400 * std::sin(x / 4000);
    y += 5 * std::cos(x / 900);
  });
}

TEST(WarpIndex, IsExactWhereTheyAreNot) {
  // A corner, a jump, waves, and no position at all.
  ExpectExact([](double& x, double& y) {
    x += 0.01 * std::fabs(x - 1450);
    y += 0.001 * std::fabs(y - 950.3);
  });
  ExpectExact([](double& x, double&) { x += x > 1500 ? 700 : 0; });
  ExpectExact([](double& x, double& y) { y += std::sin(x / 3); });
  ExpectExact([](double& x, double& y) {
    if (x + y > 2000) x = y = std::numeric_limits<double>::quiet_NaN();
  });
  ExpectExact([](double& x, double& y) { x = y = std::numeric_limits<double>::infinity(); });
}

TEST(WarpIndex, IsExactOnTheBordersOfPixels) {
  // Each position lies on one, or as near to it as rounding makes it.
  ExpectExact([](double& x, double& y) {
    x += 0.5;
    y = std::nextafter(y + 0.5, 0);
  });
  ExpectExact([](double& x, double& y) {
    x = x - 0.5 - 1e-10;
    y = y - 0.5 + 9e-5;
  });
}

TEST(WarpIndex, GivesTheLastBorderToTheLastPixel) {
  WarpIndex index = IndexOf([](double& x, double& y) {
    x = x < 1 ? kWidth - 1e-10 : x < 2 ? kWidth : -1e-12;
    y = kHeight - 0.5;
  });
  const std::vector<SourcePixel> pixels = index.Of({0, 0, 3, 1});
  EXPECT_EQ(pixels[0], (SourcePixel{kWidth - 1, kHeight - 1}));
  EXPECT_TRUE(pixels[1].IsOutside()) << "what is added before rounding counts";
  EXPECT_TRUE(pixels[2].IsOutside());
}

TEST(WarpIndex, AsksForFewPositionsOnly) {
  WarpIndex index = IndexOf([](double& x, double& y) {
    x = 0.9731 * x + 1e-6 * y * y + 0.37;
    y = 0.9677 * y + 1e-6 * x * x + 0.41;
  });
  index.Of({500, 500, 512, 512});
  EXPECT_LT(index.Asked(), 512 * 512 / 100);
}

}  // namespace
}  // namespace tiler
