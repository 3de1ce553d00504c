#include "support/rasters.h"

#include <gtest/gtest.h>
#include <ogr_spatialref.h>

namespace {

void SetPlace(GDALDataset& image, const RasterRecipe& recipe) {
  OGRSpatialReference reference;
  if (recipe.epsg != 0) {
    ASSERT_EQ(reference.importFromEPSG(recipe.epsg), OGRERR_NONE);
    reference.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    ASSERT_EQ(image.SetSpatialRef(&reference), CE_None);
  }
  std::vector<double> transform = recipe.geoTransform;
  if (!transform.empty()) {
    ASSERT_EQ(image.SetGeoTransform(transform.data()), CE_None);
  }
}

}  // namespace

void MakeEmptyRaster(const std::string& path, const RasterRecipe& recipe) {
  GDALAllRegister();
  const char* options[] = {"SPARSE_OK=TRUE", "TILED=YES", "BIGTIFF=YES", nullptr};
  const GDALDatasetUniquePtr image(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
      path.c_str(), recipe.width, recipe.height, 3, GDT_Byte, const_cast<char**>(options)));
  ASSERT_NE(image, nullptr) << path;
  SetPlace(*image, recipe);
}

void MakeRaster(const std::string& path, const RasterRecipe& recipe) {
  GDALAllRegister();
  GDALDriver* memory = GetGDALDriverManager()->GetDriverByName("MEM");
  GDALDatasetUniquePtr image(
      memory->Create("", recipe.width, recipe.height, recipe.bands, recipe.type, nullptr));
  ASSERT_NE(image, nullptr);
  std::vector<double> line(static_cast<size_t>(recipe.width));
  for (int band = 1; band <= recipe.bands; ++band) {
    for (int y = 0; y < recipe.height; ++y) {
      for (int x = 0; x < recipe.width; ++x) line[static_cast<size_t>(x)] = (band + x + y) % 256;
      ASSERT_EQ(image->GetRasterBand(band)->RasterIO(GF_Write, 0, y, recipe.width, 1, line.data(),
                                                     recipe.width, 1, GDT_Float64, 0, 0, nullptr),
                CE_None);
    }
  }
  SetPlace(*image, recipe);
  for (const auto& [key, value] : recipe.metadata) image->SetMetadataItem(key.c_str(), value.c_str());
  GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(recipe.driver);
  ASSERT_NE(driver, nullptr);
  const GDALDatasetUniquePtr file(
      driver->CreateCopy(path.c_str(), image.get(), FALSE, nullptr, nullptr, nullptr));
  ASSERT_NE(file, nullptr) << path;
}
