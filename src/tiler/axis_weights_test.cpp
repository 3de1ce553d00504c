#include "tiler/axis_weights.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>
#include <vector>

namespace tiler {
namespace {

constexpr Resampling kAll[] = {Resampling::kAverage, Resampling::kNearest,     Resampling::kBilinear,
                               Resampling::kCubic,   Resampling::kCubicSpline, Resampling::kLanczos};

// By pixel; those without weight are left out.
std::map<int, double> WeightsAt(const AxisWeights& axis, double position) {
  std::vector<float> weights(axis.Most(), 99.0F);
  const AxisWeights::Range range = axis.At(position, weights.data());
  std::map<int, double> found;
  for (int i = 0; i < range.count; ++i) {
    const double weight = weights[static_cast<std::size_t>(i)];
    if (weight != 0) found[range.first + i] = weight;
  }
  return found;
}

void ExpectWeights(const std::map<int, double>& found, const std::map<int, double>& expected) {
  for (const auto& [pixel, weight] : expected) {
    EXPECT_NEAR(found.contains(pixel) ? found.at(pixel) : 0, weight, 1e-6) << pixel;
  }
  for (const auto& [pixel, weight] : found) {
    EXPECT_NEAR(weight, expected.contains(pixel) ? expected.at(pixel) : 0, 1e-6) << pixel;
  }
}

TEST(AxisWeights, AverageOverWhatIsCovered) {
  const AxisWeights axis(Resampling::kAverage, 1.5);
  ExpectWeights(WeightsAt(axis, 10.75), {{10, 1 / 1.5}, {11, 0.5 / 1.5}});
  ExpectWeights(WeightsAt(axis, 10.5), {{9, 0.25 / 1.5}, {10, 1 / 1.5}, {11, 0.25 / 1.5}});
  ExpectWeights(WeightsAt(axis, 0.5), {{-1, 0.25 / 1.5}, {0, 1 / 1.5}, {1, 0.25 / 1.5}});
  ExpectWeights(WeightsAt(AxisWeights(Resampling::kAverage, 1), 3.5), {{3, 1}});
  ExpectWeights(WeightsAt(AxisWeights(Resampling::kAverage, 4), 7),
                {{5, 0.25}, {6, 0.25}, {7, 0.25}, {8, 0.25}});
}

TEST(AxisWeights, AreCubicWhereTheMapIsFiner) {
  for (const Resampling resampling : {Resampling::kAverage, Resampling::kCubic}) {
    const AxisWeights axis(resampling, 0.5);
    ExpectWeights(WeightsAt(axis, 5.5), {{5, 1}});
    ExpectWeights(WeightsAt(axis, 6), {{4, -0.0625}, {5, 0.5625}, {6, 0.5625}, {7, -0.0625}});
  }
}

TEST(AxisWeights, AreThoseOfTheirKernels) {
  ExpectWeights(WeightsAt(AxisWeights(Resampling::kNearest, 1.7), 5.99), {{5, 1}});
  ExpectWeights(WeightsAt(AxisWeights(Resampling::kBilinear, 1), 5.75), {{5, 0.75}, {6, 0.25}});
  ExpectWeights(WeightsAt(AxisWeights(Resampling::kBilinear, 2), 5),
                {{3, 0.125}, {4, 0.375}, {5, 0.375}, {6, 0.125}});
  ExpectWeights(WeightsAt(AxisWeights(Resampling::kCubicSpline, 1), 5.5),
                {{4, 1.0 / 6}, {5, 2.0 / 3}, {6, 1.0 / 6}});
  const double sinc = std::sin(std::numbers::pi / 2) / (std::numbers::pi / 2);
  const auto lanczos = WeightsAt(AxisWeights(Resampling::kLanczos, 1), 6);
  EXPECT_EQ(lanczos.size(), 6U);
  EXPECT_NEAR(lanczos.at(5) / lanczos.at(4),
              sinc * (std::sin(std::numbers::pi / 6) / (std::numbers::pi / 6)) /
                  (std::sin(1.5 * std::numbers::pi) / (1.5 * std::numbers::pi) *
                   std::sin(std::numbers::pi / 2) / (std::numbers::pi / 2)),
              1e-5);
}

TEST(AxisWeights, AddUpToOneWithinTheirReach) {
  for (const Resampling resampling : kAll) {
    for (const double scale : {0.3, 1.0, 1.01, 1.9, 2.0, 3.7}) {
      const AxisWeights axis(resampling, scale);
      for (int i = -40; i < 40; ++i) {
        const double position = i * 0.137;
        const auto weights = WeightsAt(axis, position);
        double sum = 0;
        for (const auto& [pixel, weight] : weights) {
          sum += weight;
          EXPECT_LE(std::fabs(pixel + 0.5 - position), axis.Reach() + 0.5 + 1e-9);
        }
        EXPECT_NEAR(sum, 1, 1e-5);
      }
    }
  }
}

}  // namespace
}  // namespace tiler
