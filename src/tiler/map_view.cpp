#include "tiler/map_view.h"

#include <ogr_spatialref.h>

#include <array>

#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/map_srs.h"
#include "tiler/map_warp.h"
#include "tiler/number_text.h"
#include "tiler/source_image.h"
#include "tiler/tiler_error.h"
#include "tiler/virtual_raster.h"
#include "tiler/warp_options.h"

namespace tiler {

namespace {

constexpr const char* kNodataValues = "NODATA_VALUES";

GDALDatasetUniquePtr Reprojected(GDALDataset& dataset, const OGRSpatialReference& srs,
                                 const std::vector<int>& transparent, GdalErrors& errors) {
  const GDALDatasetUniquePtr warped = WarpedToMap(dataset, srs, errors);
  const std::vector<int> nodata = transparent.empty() ? NodataOf(dataset) : transparent;
  const int bands = warped->GetRasterCount();
  if (!nodata.empty()) {
    GDALDatasetUniquePtr masked = OpenImage(WithNodata(XmlOf(*warped), transparent), errors, kNotRead);
    masked->SetMetadataItem(kNodataValues, Joined(nodata, " ").c_str());
    return masked;
  }
  if (bands != 1 && bands != 3) return OpenImage(XmlOf(*warped), errors, kNotRead);
  return OpenImage(WithAlphaBand(XmlOf(*warped), bands), errors, kNotRead);
}

GDALDatasetUniquePtr AsItIs(GDALDataset& dataset, GdalErrors& errors) {
  GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("VRT");
  GDALDatasetUniquePtr copy(driver->CreateCopy("", &dataset, FALSE, nullptr, nullptr, nullptr));
  errors.Check(kNotRead);
  if (!copy) throw TilerError(kNotRead);
  return copy;
}

// By their number: colours, and transparency as the last one.
bool HasAlphaBand(GDALDataset& dataset) {
  return dataset.GetRasterCount() % 2 == 0;
}

// Whether its pixels are shown as they are, where they lie by position and size alone. Its bands are one or
// three colours, with or without transparency behind them, which nothing else decides on.
bool IsSimple(GDALDataset& dataset) {
  std::array<double, 6> transform = {};
  if (dataset.GetGeoTransform(transform.data()) != CE_None || dataset.GetGCPCount() != 0) return false;
  const int masks = HasAlphaBand(dataset) ? GMF_ALPHA | GMF_PER_DATASET : GMF_ALL_VALID;
  for (GDALRasterBand* band : dataset.GetBands()) {
    const bool isAlpha = HasAlphaBand(dataset) && band->GetBand() == dataset.GetRasterCount();
    if ((band->GetColorInterpretation() == GCI_AlphaBand) != isAlpha) return false;
    if (band->GetMaskFlags() != (isAlpha ? GMF_ALL_VALID : masks)) return false;
  }
  return true;
}

int ColoursOf(GDALDataset& dataset) {
  const int bands = dataset.GetRasterCount();
  const bool hasAlpha = (dataset.GetRasterBand(1)->GetMaskBand()->GetMaskFlags() & GMF_ALPHA) != 0;
  return hasAlpha || bands == 4 || bands == 2 ? bands - 1 : bands;
}

// Simple ones.
PixelSource PixelsOf(GDALDataset& dataset, const SourceImage& source, GdalErrors& errors) {
  PixelSource pixels;
  pixels.name = source.Name();
  pixels.colours = ColoursOf(dataset);
  if (HasAlphaBand(dataset)) pixels.transparency = PixelSource::Transparency::kLastBand;
  pixels.hidden = source.Transparent();
  if (source.IsToBeShared()) pixels.shared = OpenShared(source.Name(), errors, kNotRead);
  return pixels;
}

}  // namespace

std::string MapView::State() const {
  std::string text = xml + "|" + Joined(hidden, " ");
  for (const double each : {image.left, image.top, image.pixelWidth, image.pixelHeight}) {
    text += "|" + ShortestText(each);
  }
  text += "|" + Joined({image.width, image.height}, " ");
  if (!exact) return text;
  return text + "|" + exact->srs + "|" + Joined(exact->pixels.hidden, " ") + "|" +
         std::to_string(static_cast<int>(exact->resampling));
}

MapView MakeMapView(const SourceImage& source, RunLog& log) {
  GdalErrors errors(log);
  const GDALDatasetUniquePtr dataset = OpenImage(source.Name(), errors, kNotRead);
  const OGRSpatialReference srs = SrsOf(*dataset, source.Srs());
  const bool isInMapSrs = IsInMapSrs(*dataset, srs);
  // GDAL has one way to be transparent for an image, or the other.
  const bool isLeftToUs = HasAlphaBand(*dataset);
  const std::vector<int> transparent = isLeftToUs ? std::vector<int>() : source.Transparent();
  const GDALDatasetUniquePtr view =
      isInMapSrs ? AsItIs(*dataset, errors) : Reprojected(*dataset, srs, transparent, errors);
  MapView made;
  made.xml = XmlOf(*view);
  made.image = MapImageOf(*view);
  made.colours = ColoursOf(*view);
  if (isLeftToUs) made.hidden = source.Transparent();
  if (!isInMapSrs && IsSimple(*dataset) && !ReachesBeyondTheMap(*dataset, srs)) {
    made.direct = DirectWarp{PixelsOf(*dataset, source, errors), WktOf(srs), transparent};
  }
  errors.Check(kNotRead);
  return made;
}

}  // namespace tiler
