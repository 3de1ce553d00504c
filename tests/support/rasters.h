// Small real rasters for tests, written by GDAL.
#ifndef MOSAICON_TESTS_SUPPORT_RASTERS_H_
#define MOSAICON_TESTS_SUPPORT_RASTERS_H_

#include <gdal_priv.h>

#include <map>
#include <string>
#include <vector>

struct RasterRecipe {
  int width = 100;
  int height = 80;
  int bands = 3;
  GDALDataType type = GDT_Byte;
  int epsg = 32632;                                                               // 0: no reference
  std::vector<double> geoTransform = {500000.0, 0.5, 0.0, 5000000.0, 0.0, -0.5};  // empty: none
  std::map<std::string, std::string> metadata;
  const char* driver = "GTiff";
};

// A GeoTIFF of three bands and of any size that takes no room: its pixels were never written, and are read as
// 0. Width, height and place are those of the recipe.
void MakeEmptyRaster(const std::string& path, const RasterRecipe& recipe);

// Writes a raster whose band b holds the value b + x + y.
void MakeRaster(const std::string& path, const RasterRecipe& recipe);

#endif  // MOSAICON_TESTS_SUPPORT_RASTERS_H_
