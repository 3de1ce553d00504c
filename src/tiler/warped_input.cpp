#include "tiler/warped_input.h"

#include <gdal_priv.h>

#include <filesystem>

#include "files/path_text.h"
#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/shown_bands.h"
#include "tiler/tiler_error.h"
#include "tiler/virtual_raster.h"
#include "tiler/warp_options.h"

namespace tiler {

std::optional<WarpedInput> WithTransparency(GDALDataset& image, const std::string& path, GdalErrors& errors) {
  const std::string xml = XmlOf(image);
  if (xml.empty() || HasNodata(image) || HasTransparency(image)) return std::nullopt;
  const std::string folder = files::Utf8Of(files::PathOf(path).parent_path());
  const std::optional<WarpSource> source = WithAbsoluteSource(xml, folder);
  if (!source) return std::nullopt;
  const GDALDatasetUniquePtr warped = OpenImage(source->path, errors, kNotRead);
  return WarpedInput{WithAlphaBand(source->xml, image.GetRasterCount()), HasTransparency(*warped)};
}

}  // namespace tiler
