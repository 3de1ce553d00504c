#include "tiler/gdal_objects.h"

#include "tiler/gdal_errors.h"
#include "tiler/tiler_error.h"

namespace tiler {

GDALDatasetUniquePtr OpenImage(const std::string& name, const GdalErrors& errors,
                               const std::string& failure) {
  GDALDatasetUniquePtr dataset(
      GDALDataset::Open(name.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR));
  errors.Check(failure);
  if (!dataset) throw TilerError(failure);
  return dataset;
}

std::shared_ptr<SharedImage> OpenShared(const std::string& name, const GdalErrors& errors,
                                        const std::string& failure) {
  auto image = std::make_shared<SharedImage>();
  image->dataset = OpenImage(name, errors, failure);
  return image;
}

}  // namespace tiler
