#include <ogr_spatialref.h>

#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/map_limits.h"
#include "tiler/map_srs.h"
#include "tiler/map_view.h"
#include "tiler/map_warp.h"
#include "tiler/source_image.h"
#include "tiler/tiler_error.h"

namespace tiler {

namespace {

using Transparency = PixelSource::Transparency;

MapImage PlaceOf(const Request& request, GdalErrors& errors) {
  const GDALDatasetUniquePtr image = OpenImage(request.input, errors, kNotRead);
  const OGRSpatialReference srs = SrsOf(*image, request.srs);
  CheckExtent(*image, srs);
  if (IsInMapSrs(*image, srs)) return MapImageOf(*image);
  return MapImageOf(*WarpedToMap(*image, srs, errors));
}

// A value for each colour band, or nothing: GDAL tells then what is hidden, from the first band.
std::vector<int> HiddenBy(GDALDataset& image, int colours) {
  const std::vector<int> nodata = NodataOf(image);
  return nodata.size() == static_cast<std::size_t>(colours) ? nodata : std::vector<int>();
}

PixelSource PixelsOf(GDALDataset& image, const SourceImage& source) {
  PixelSource pixels;
  pixels.name = source.Name();
  pixels.hidden = source.Transparent();
  const int bands = image.GetRasterCount();
  if (bands % 2 == 0) {  // colours, and transparency as the last one
    pixels.colours = bands - 1;
    pixels.transparency = Transparency::kLastBand;
    return pixels;
  }
  pixels.colours = bands;
  const int masks = image.GetRasterBand(1)->GetMaskFlags();
  if ((masks & GMF_NODATA) != 0) {
    // The transparent colour takes the place of what the image calls no data.
    if (!pixels.hidden.empty()) return pixels;
    pixels.hidden = HiddenBy(image, bands);
    if (!pixels.hidden.empty()) return pixels;
  }
  if (masks != GMF_ALL_VALID) pixels.transparency = Transparency::kMask;
  return pixels;
}

}  // namespace

MapView MakeExactView(const Request& request, const SourceImage& source, Resampling resampling, RunLog& log) {
  GdalErrors errors(log);
  MapView view;
  view.image = PlaceOf(request, errors);
  errors.Check(kNotRead);
  const GDALDatasetUniquePtr image = OpenImage(source.Name(), errors, kNotRead);
  view.exact = ExactWarp{PixelsOf(*image, source), WktOf(SrsOf(*image, source.Srs())), resampling};
  view.colours = view.exact->pixels.colours;
  if (source.IsToBeShared()) view.exact->pixels.shared = OpenShared(source.Name(), errors, kNotRead);
  errors.Check(kNotRead);
  return view;
}

}  // namespace tiler
