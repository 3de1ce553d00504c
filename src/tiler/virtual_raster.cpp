#include "tiler/virtual_raster.h"

#include <cpl_string.h>
#include <gdal_utils.h>

#include <array>

#include "tiler/gdal_errors.h"
#include "tiler/tiler_error.h"

namespace tiler {

MemoryFile MakeVirtual(GDALDataset& image, const std::vector<int>& bands, const std::string& nodata,
                       const std::string& metadata, GdalErrors& errors) {
  MemoryFile file(".vrt");
  CPLStringList words;
  words.AddString("-of").AddString("VRT");
  for (const int band : bands) words.AddString("-b").AddString(std::to_string(band).c_str());
  words.AddString("-a_nodata").AddString(nodata.c_str());
  if (!metadata.empty()) words.AddString("-mo").AddString(metadata.c_str());
  GDALTranslateOptions* options = GDALTranslateOptionsNew(words.List(), nullptr);
  int misused = FALSE;
  const GDALDatasetUniquePtr made(GDALDataset::FromHandle(
      GDALTranslate(file.Name().c_str(), GDALDataset::ToHandle(&image), options, &misused)));
  GDALTranslateOptionsFree(options);
  errors.Check(kNotRead);
  if (!made) throw TilerError(kNotRead);
  return file;
}

GDALDatasetUniquePtr MakeEmptyVirtual(GDALDataset& image, const std::string& name) {
  GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("VRT");
  GDALDatasetUniquePtr made(
      driver->Create(name.c_str(), image.GetRasterXSize(), image.GetRasterYSize(), 0, GDT_Byte, nullptr));
  if (!made) throw TilerError(kNotRead);
  made->SetSpatialRef(image.GetSpatialRef());
  std::array<double, 6> place = {};
  if (image.GetGeoTransform(place.data()) == CE_None) made->SetGeoTransform(place.data());
  if (image.GetGCPCount() > 0) {
    made->SetGCPs(image.GetGCPCount(), image.GetGCPs(), image.GetGCPSpatialRef());
  }
  return made;
}

std::string XmlOf(GDALDataset& image) {
  char** text = image.GetMetadata("xml:VRT");
  return text == nullptr || *text == nullptr ? "" : *text;
}

}  // namespace tiler
