#include "tiler/value_range.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "tiler/gdal_errors.h"
#include "tiler/tiler_error.h"

namespace tiler {

namespace {

constexpr double kDarker = 0.02;
constexpr double kNotBrighter = 0.98;
// Larger images are looked at in so many windows in each direction, each of so many pixels in each direction.
constexpr int kWindows = 16;
constexpr int kWindowSize = 128;

struct Window {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

// From the first to the last place that it can have, in equal steps.
int Start(int index, int size) {
  return static_cast<int>(std::int64_t{size - kWindowSize} * index / (kWindows - 1));
}

std::vector<Window> WindowsOf(GDALDataset& image) {
  const int width = image.GetRasterXSize();
  const int height = image.GetRasterYSize();
  constexpr int kSide = kWindows * kWindowSize;
  if (std::int64_t{width} * height <= std::int64_t{kSide} * kSide) return {{0, 0, width, height}};
  std::vector<Window> windows;
  for (int row = 0; row < kWindows; ++row) {
    for (int column = 0; column < kWindows; ++column) {
      Window window = {0, 0, std::min(width, kWindowSize), std::min(height, kWindowSize)};
      if (width > kWindowSize) window.x = Start(column, width);
      if (height > kWindowSize) window.y = Start(row, height);
      windows.push_back(window);
    }
  }
  return windows;
}

template <typename Value>
std::vector<Value> Read(GDALRasterBand& band, const Window& window, GDALDataType type, GdalErrors& errors) {
  std::vector<Value> values(static_cast<std::size_t>(window.width) * static_cast<std::size_t>(window.height));
  errors.Forget();
  const CPLErr result = band.RasterIO(GF_Read, window.x, window.y, window.width, window.height, values.data(),
                                      window.width, window.height, type, 0, 0, nullptr);
  errors.Check(kNotRead);
  if (result != CE_None) throw TilerError(kNotRead);
  return values;
}

double ValueAt(std::vector<double>& values, double share) {
  const auto place = std::lround(share * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + place, values.end());
  return values[static_cast<std::size_t>(place)];
}

}  // namespace

ValueRange RangeOf(std::vector<double> values) {
  if (values.empty()) return {};
  const ValueRange range = {ValueAt(values, kDarker), ValueAt(values, kNotBrighter)};
  if (range.black < range.white) return range;
  // An image of one value is grey.
  const double little = std::max(1.0, std::fabs(range.black) * 1e-9);
  return {range.black - little, range.black + little};
}

ValueRange ShownRangeOf(GDALDataset& image, int colours, GdalErrors& errors) {
  std::vector<double> values;
  for (const Window& window : WindowsOf(image)) {
    std::vector<std::vector<double>> bands;
    for (int band = 1; band <= colours; ++band) {
      bands.push_back(Read<double>(*image.GetRasterBand(band), window, GDT_Float64, errors));
    }
    // After the bands: where they cannot be read, a mask that is made of them leaks.
    const auto mask = Read<std::uint8_t>(*image.GetRasterBand(1)->GetMaskBand(), window, GDT_Byte, errors);
    for (const std::vector<double>& pixels : bands) {
      for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (mask[i] != 0 && std::isfinite(pixels[i])) values.push_back(pixels[i]);
      }
    }
  }
  return RangeOf(std::move(values));
}

}  // namespace tiler
