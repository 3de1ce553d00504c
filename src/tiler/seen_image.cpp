#include "tiler/seen_image.h"

#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/run_log.h"
#include "tiler/tiler_error.h"

namespace tiler {

SeenImage::SeenImage(GDALDataset& image) {
  RunLog nowhere{std::filesystem::path()};
  GdalErrors errors(nowhere);
  // Black is what hides the surroundings of most images that are no bytes.
  m_files = MakeColourImage(image, ShownBandsOf(image), Colour{0, 0, 0}, nowhere, errors);
  m_dataset = OpenImage(m_files.files.back().Name(), errors, kNotRead);
}

}  // namespace tiler
