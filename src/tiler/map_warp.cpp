#include "tiler/map_warp.h"

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
#include "tiler/map_srs.h"
#include "tiler/tiler_error.h"

namespace tiler {

namespace {

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

}  // namespace

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

bool ReachesBeyondTheMap(GDALDataset& dataset, const OGRSpatialReference& srs) {
  const std::optional<Latitudes> latitudes = LatitudesOf(dataset, srs);
  return latitudes && latitudes->BeyondTheMap();
}

GDALDatasetUniquePtr WarpedToMap(GDALDataset& dataset, const OGRSpatialReference& srs, GdalErrors& errors) {
  const std::optional<Latitudes> latitudes = LatitudesOf(dataset, srs);
  constexpr double kExact = 0.0;  // pixels that a position may be wrong by
  GDALDatasetUniquePtr warped = latitudes && latitudes->BeyondTheMap()
                                    ? WarpedWithinTheMap(dataset, srs, *latitudes)
                                    : GDALDatasetUniquePtr(GDALDataset::FromHandle(GDALAutoCreateWarpedVRT(
                                          GDALDataset::ToHandle(&dataset), WktOf(srs).c_str(),
                                          WktOf(MapSrs()).c_str(), GRA_NearestNeighbour, kExact, nullptr)));
  errors.Check(kNotRead);
  if (!warped) throw TilerError(kNotRead);
  return warped;
}

MapImage MapImageOf(GDALDataset& dataset) {
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

}  // namespace tiler
