#include "tiler/map_view.h"

#include <cpl_string.h>
#include <gdal_utils.h>
#include <gdalwarper.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <optional>

#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/map_srs.h"
#include "tiler/number_text.h"
#include "tiler/source_image.h"
#include "tiler/tiler_error.h"
#include "tiler/virtual_raster.h"
#include "tiler/warp_options.h"

namespace tiler {

namespace {

constexpr const char* kNodataValues = "NODATA_VALUES";

OGRSpatialReference SrsOf(GDALDataset& dataset, const std::string& wanted) {
  OGRSpatialReference srs;
  if (!wanted.empty()) {
    srs.SetFromUserInput(wanted.c_str());
  } else {
    const std::string own = dataset.GetProjectionRef();
    srs.importFromWkt(own.empty() ? dataset.GetGCPProjection() : own.c_str());
  }
  srs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  return srs;
}

// What the image itself calls no data; empty when it does not, or when a pixel cannot have such a value.
std::vector<int> NodataOf(GDALDataset& dataset) {
  std::vector<int> values;
  for (GDALRasterBand* band : dataset.GetBands()) {
    int has = FALSE;
    const double value = band->GetNoDataValue(&has);
    if (has == FALSE) continue;
    if (!(value >= 0 && value <= 255) || value != std::floor(value)) return {};
    values.push_back(static_cast<int>(value));
  }
  return values;
}

std::array<double, 6> GeoTransformOf(GDALDataset& dataset) {
  std::array<double, 6> transform = {0, 1, 0, 0, 0, 1};
  dataset.GetGeoTransform(transform.data());
  return transform;
}

// Degrees north, from the lower to the upper edge of an image that has such edges and lies in degrees.
struct Latitudes {
  double south = 0;
  double north = 0;
  bool BeyondTheMap() const { return north > kLatitudeLimit || south < -kLatitudeLimit; }
};
std::optional<Latitudes> LatitudesOf(GDALDataset& dataset, const OGRSpatialReference& srs) {
  std::array<double, 6> transform = {};
  if (!srs.IsGeographic() || dataset.GetGeoTransform(transform.data()) != CE_None) return std::nullopt;
  if (transform[2] != 0 || transform[4] != 0 || transform[5] >= 0) return std::nullopt;
  return Latitudes{transform[3] + dataset.GetRasterYSize() * transform[5], transform[3]};
}

// An image in degrees whose edges are cut off where the map ends. Its own coordinate system counts here.
GDALDatasetUniquePtr WarpedWithinTheMap(GDALDataset& dataset, const OGRSpatialReference& srs,
                                        const Latitudes& latitudes) {
  const std::array<double, 6> transform = GeoTransformOf(dataset);
  double xs[] = {transform[0], transform[0] + dataset.GetRasterXSize() * transform[1]};
  double ys[] = {std::max(latitudes.south, -kLatitudeLimit), std::min(latitudes.north, kLatitudeLimit)};
  const OGRSpatialReference map = MapSrs();
  const std::unique_ptr<OGRCoordinateTransformation> toMap(OGRCreateCoordinateTransformation(&srs, &map));
  if (!toMap || !toMap->Transform(2, xs, ys)) throw TilerError(kNotRead);
  CPLStringList words;
  words.AddString("-of").AddString("VRT").AddString("-t_srs").AddString("EPSG:3857").AddString("-te");
  for (const double side : {xs[0], ys[0], xs[1], ys[1]}) words.AddString(CPLSPrintf("%.18g", side));
  GDALWarpAppOptions* options = GDALWarpAppOptionsNew(words.List(), nullptr);
  GDALDatasetH source = GDALDataset::ToHandle(&dataset);
  int misused = FALSE;
  GDALDatasetUniquePtr warped(GDALDataset::FromHandle(GDALWarp("", nullptr, 1, &source, options, &misused)));
  GDALWarpAppOptionsFree(options);
  return warped;
}

// beyondTheMap: its latitudes when a part of it lies there.
GDALDatasetUniquePtr Warped(GDALDataset& dataset, const OGRSpatialReference& srs,
                            const std::optional<Latitudes>& beyondTheMap) {
  if (beyondTheMap) return WarpedWithinTheMap(dataset, srs, *beyondTheMap);
  constexpr double kExact = 0.0;  // pixels that a position may be wrong by
  return GDALDatasetUniquePtr(GDALDataset::FromHandle(
      GDALAutoCreateWarpedVRT(GDALDataset::ToHandle(&dataset), WktOf(srs).c_str(), WktOf(MapSrs()).c_str(),
                              GRA_NearestNeighbour, kExact, nullptr)));
}

GDALDatasetUniquePtr Reprojected(GDALDataset& dataset, const OGRSpatialReference& srs,
                                 const std::optional<Latitudes>& beyondTheMap,
                                 const std::vector<int>& transparent, GdalErrors& errors) {
  const GDALDatasetUniquePtr warped = Warped(dataset, srs, beyondTheMap);
  errors.Check(kNotRead);
  if (!warped) throw TilerError(kNotRead);
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

MapImage ImageOf(GDALDataset& dataset) {
  const std::array<double, 6> transform = GeoTransformOf(dataset);
  if (transform[2] != 0 || transform[4] != 0) {
    throw TilerError(
        "Georeference of the raster contains rotation or skew. Such raster is not supported. Please use"
        " gdalwarp first.");
  }
  return {dataset.GetRasterXSize(),
          dataset.GetRasterYSize(),
          transform[0],
          transform[3],
          transform[1],
          transform[5]};
}

}  // namespace

MapView MakeMapView(const SourceImage& source, RunLog& log) {
  GdalErrors errors(log);
  const GDALDatasetUniquePtr dataset = OpenImage(source.Name(), errors, kNotRead);
  const OGRSpatialReference srs = SrsOf(*dataset, source.Srs());
  const bool isInMapSrs = IsInMapSrs(*dataset, srs);
  std::optional<Latitudes> beyondTheMap = LatitudesOf(*dataset, srs);
  if (beyondTheMap && !beyondTheMap->BeyondTheMap()) beyondTheMap.reset();
  // GDAL has one way to be transparent for an image, or the other.
  const bool isLeftToUs = HasAlphaBand(*dataset);
  const std::vector<int> transparent = isLeftToUs ? std::vector<int>() : source.Transparent();
  const GDALDatasetUniquePtr view =
      isInMapSrs ? AsItIs(*dataset, errors) : Reprojected(*dataset, srs, beyondTheMap, transparent, errors);
  MapView made = {XmlOf(*view), ImageOf(*view), ColoursOf(*view), {}, std::nullopt};
  if (isLeftToUs) made.hidden = source.Transparent();
  if (!isInMapSrs && IsSimple(*dataset) && !beyondTheMap) {
    made.direct = {source.Name(), WktOf(srs), transparent, HasAlphaBand(*dataset), nullptr};
    const bool isShared = source.Layout().IsStriped() && !source.IsComputed();
    if (isShared) made.direct->shared = OpenShared(source.Name(), errors, kNotRead);
  }
  errors.Check(kNotRead);
  return made;
}

}  // namespace tiler
