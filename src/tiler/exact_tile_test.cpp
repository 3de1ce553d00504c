#include "tiler/exact_tile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <utility>

namespace tiler {
namespace {

constexpr int kWidth = 420;
constexpr int kHeight = 440;

// Four cells of a tile that is turned by an angle and lies with its first corner at a position.
struct Place {
  double x = 0;
  double y = 0;
  double scale = 1;
  double angle = 0;
};

std::vector<PositionCell> CellsAt(const Place& place) {
  const double across = place.scale * std::cos(place.angle);
  const double down = place.scale * std::sin(place.angle);
  const ExactPositions positions = [&](std::vector<double>& xs, std::vector<double>& ys) {
    const Bounds bounds = TileBounds({10, 500, 500});
    const double pixel = (bounds.east - bounds.west) / kTileSize;
    for (std::size_t i = 0; i < xs.size(); ++i) {
      const double x = (xs[i] - bounds.west) / pixel;
      const double y = (bounds.north - ys[i]) / pixel;
      xs[i] = place.x + across * x - down * y;
      ys[i] = place.y + down * x + across * y;
    }
  };
  return PositionCellsOf({10, 500, 500}, positions);
}

using Image = std::vector<Pixel>;  // of the whole size

Image Noise(unsigned seed, bool isOpaque) {
  std::mt19937 random(seed);
  Image image(std::size_t{kWidth} * kHeight);
  for (Pixel& pixel : image) {
    const auto byte = [&random] { return static_cast<std::uint8_t>(random()); };
    pixel = {byte(), byte(), byte(), static_cast<std::uint8_t>(isOpaque ? 255 : random() % 3 * 127)};
  }
  return image;
}

Image PartOf(const Image& image, const PixelWindow& window) {
  Image part;
  for (std::int64_t y = window.y; y < window.y + window.height; ++y) {
    const auto row = image.begin() + y * kWidth + window.x;
    part.insert(part.end(), row, row + window.width);
  }
  return part;
}

Tile TileOf(const Image& image, const Place& place, Resampling resampling = Resampling::kAverage) {
  const std::vector<PositionCell> cells = CellsAt(place);
  const PixelWindow window = SourceOf(cells, resampling, kWidth, kHeight);
  return ExactTile(cells, resampling, window, PartOf(image, window));
}

// The average of many points of the pixel, which count as much as they are opaque.
Pixel Truth(const Image& image, const Place& place, int column, int row) {
  constexpr int kPoints = 64;
  double sums[4] = {};
  for (int i = 0; i < kPoints; ++i) {
    for (int k = 0; k < kPoints; ++k) {
      const double across = column + (i + 0.5) / kPoints;
      const double down = row + (k + 0.5) / kPoints;
      const double x =
          place.x + place.scale * (std::cos(place.angle) * across - std::sin(place.angle) * down);
      const double y =
          place.y + place.scale * (std::sin(place.angle) * across + std::cos(place.angle) * down);
      if (x < 0 || y < 0 || x >= kWidth || y >= kHeight) continue;
      const Pixel& pixel = image[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)];
      const double weight = pixel.alpha / 255.0;
      sums[0] += weight * pixel.red;
      sums[1] += weight * pixel.green;
      sums[2] += weight * pixel.blue;
      sums[3] += weight;
    }
  }
  const auto alpha = static_cast<std::uint8_t>(std::lround(sums[3] / (kPoints * kPoints) * 255));
  if (alpha == 0) return {};
  const auto seen = [&sums](int i) { return static_cast<std::uint8_t>(std::lround(sums[i] / sums[3])); };
  return {seen(0), seen(1), seen(2), alpha};
}

void ExpectNear(const Pixel& found, const Pixel& expected, double tolerance) {
  EXPECT_NEAR(found.alpha, expected.alpha, tolerance);
  // Hardly anything is to be seen of the colours otherwise.
  if (expected.alpha < 32) return;
  EXPECT_NEAR(found.red, expected.red, tolerance);
  EXPECT_NEAR(found.green, expected.green, tolerance);
  EXPECT_NEAR(found.blue, expected.blue, tolerance);
}

void ExpectTruth(const Image& image, const Place& place, double tolerance) {
  const Tile tile = TileOf(image, place);
  for (int row = 0; row < kTileSize; row += 17) {
    for (int column = 0; column < kTileSize; column += 13) {
      SCOPED_TRACE(testing::Message() << column << ", " << row << ", turned by " << place.angle);
      ExpectNear(tile[static_cast<std::size_t>(row * kTileSize + column)], Truth(image, place, column, row),
                 tolerance);
    }
  }
}

TEST(ExactTile, IsTheAverageOfWhatItsPixelsCover) {
  // Noise is the worst that there is; the truth itself is a level or two beside it.
  ExpectTruth(Noise(1, true), {3.3, 5.7, 1.5, 0}, 4);
  ExpectTruth(Noise(2, true), {10.2, 1.1, 1.03, 0}, 4);
  ExpectTruth(Noise(3, false), {3.3, 5.7, 1.5, 0}, 6);
}

TEST(ExactTile, IsNothingOutsideOfTheImage) {
  const Image image = Noise(4, true);
  ExpectTruth(image, {-100.4, -50.3, 1.5, 0}, 6);
  ExpectTruth(image, {200.4, 250.3, 1.5, 0}, 6);
  const Tile outside = TileOf(image, {kWidth + 10.0, 0, 1.5, 0});
  EXPECT_TRUE(outside == Tile(kTilePixels));
}

// A soft picture, as photographs are at this scale: upright pixels stand for turned ones.
TEST(ExactTile, MayBeTurned) {
  Image image(std::size_t{kWidth} * kHeight);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const auto wave = [](double place) { return static_cast<std::uint8_t>(128 + 100 * std::sin(place)); };
      image[static_cast<std::size_t>(y * kWidth + x)] = {wave(x * 0.9), wave(y * 0.9), wave((x + y) * 0.5),
                                                         255};
    }
  }
  const std::pair<double, double> tolerances[] = {{0.02, 3}, {0.1, 3}, {0.4, 6}, {0.8, 8}};
  for (const auto& [angle, tolerance] : tolerances) ExpectTruth(image, {150, 5, 1.2, angle}, tolerance);
}

TEST(ExactTile, KeepsTheColoursOfWhatIsHalfHidden) {
  Image image(std::size_t{kWidth} * kHeight, Pixel{0, 0, 0, 0});
  for (std::size_t i = 0; i < image.size(); ++i) {
    if (i % kWidth >= 101) image[i] = {200, 90, 40, 255};
  }
  const Tile tile = TileOf(image, {0, 0, 1.5, 0});
  int halves = 0;
  for (const Pixel& pixel : tile) {
    if (pixel.alpha == 0) continue;
    EXPECT_EQ(pixel, (Pixel{200, 90, 40, pixel.alpha}));
    halves += pixel.alpha < 255 ? 1 : 0;
  }
  EXPECT_GT(halves, 200);
}

TEST(ExactTile, ShowsOneColourAsItIs) {
  const Image image(std::size_t{kWidth} * kHeight, Pixel{1, 127, 254, 255});
  for (const Resampling resampling : {Resampling::kAverage, Resampling::kNearest, Resampling::kBilinear,
                                      Resampling::kCubic, Resampling::kCubicSpline, Resampling::kLanczos}) {
    for (const double scale : {0.7, 1.0, 1.3, 1.6}) {
      const Tile tile = TileOf(image, {2, 2, scale, 0}, resampling);
      EXPECT_TRUE(tile == Tile(kTilePixels, image.front())) << static_cast<int>(resampling) << " " << scale;
    }
  }
}

TEST(HalvedByOpacity, WeighsColours) {
  Tile tile(kTilePixels);
  tile[0] = {200, 0, 10, 255};
  tile[kTileSize + 1] = {100, 50, 10, 255};
  tile[2] = {7, 8, 9, 3};
  tile[4] = {9, 9, 9, 1};
  const Quarter quarter = HalvedByOpacity(tile);
  EXPECT_EQ(quarter[0], (Pixel{150, 25, 10, 128}));
  EXPECT_EQ(quarter[1], (Pixel{7, 8, 9, 1}));
  EXPECT_EQ(quarter[2], (Pixel{0, 0, 0, 0}));
  EXPECT_EQ(quarter[kTilePixels / 4 - 1], Pixel{});
}

TEST(HalvedByOpacity, DoesNotBrighten) {
  Tile tile(kTilePixels);
  std::mt19937 random(1);
  double before = 0;
  for (Pixel& pixel : tile) {
    pixel = {static_cast<std::uint8_t>(random()), 0, 255, 255};
    before += pixel.red;
  }
  double after = 0;
  for (const Pixel& pixel : HalvedByOpacity(tile)) {
    after += pixel.red;
    EXPECT_EQ(pixel.green, 0);
    EXPECT_EQ(pixel.blue, 255);
    EXPECT_EQ(pixel.alpha, 255);
  }
  EXPECT_NEAR(before / kTilePixels, after / (kTilePixels / 4), 0.01);
}

}  // namespace
}  // namespace tiler
