#include "tiler/damaged_place.h"

#include <gdal_priv.h>

#include <algorithm>
#include <vector>

#include "tiler/gdal_errors.h"
#include "tiler/image_files.h"

namespace tiler {

namespace {

std::string Pixels(int first, int count) {
  return std::to_string(first) + " to " + std::to_string(first + count - 1);
}

bool CanBeRead(GDALRasterBand& band, int x, int y, int width, int height, GdalErrors& errors) {
  std::vector<double> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  errors.Forget();
  const CPLErr result =
      band.RasterIO(GF_Read, x, y, width, height, pixels.data(), width, height, GDT_Float64, 0, 0, nullptr);
  return result == CE_None && errors.Failure().empty();
}

std::string DamageIn(GDALRasterBand& band, const std::string& path, const std::atomic<bool>& stop,
                     GdalErrors& errors) {
  int width = 0;
  int height = 0;
  band.GetBlockSize(&width, &height);
  for (int y = 0; y < band.GetYSize(); y += height) {
    for (int x = 0; x < band.GetXSize(); x += width) {
      if (stop) return "";
      const int across = std::min(width, band.GetXSize() - x);
      const int down = std::min(height, band.GetYSize() - y);
      if (CanBeRead(band, x, y, across, down, errors)) continue;
      return "pixels " + Pixels(x, across) + " from the left and " + Pixels(y, down) + " from the top of " +
             path + " are damaged";
    }
  }
  return "";
}

}  // namespace

std::string DamagedPlace(const std::string& path, const std::atomic<bool>& stop, RunLog& log) {
  GdalErrors errors(log);
  for (const std::string& file : FilesOfPixels(path)) {
    const GDALDatasetUniquePtr image(GDALDataset::Open(file.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY));
    if (!image) continue;
    for (GDALRasterBand* band : image->GetBands()) {
      std::string place = DamageIn(*band, file, stop, errors);
      if (!place.empty()) return place;
    }
  }
  return "";
}

}  // namespace tiler
