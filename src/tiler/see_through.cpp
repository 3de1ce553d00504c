#include "tiler/see_through.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "files/path_text.h"
#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/map_srs.h"
#include "tiler/map_warp.h"
#include "tiler/run_log.h"
#include "tiler/virtual_raster.h"
#include "tiler/virtual_sources.h"

namespace tiler {

namespace {

std::string FolderOf(const std::string& path) {
  return files::Utf8Of(files::PathOf(path).parent_path());
}

// Nothing where it is no file by itself, but a part of one.
GDALDatasetUniquePtr TryToOpen(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(files::PathOf(path), ignored)) return nullptr;
  return GDALDatasetUniquePtr(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY));
}

bool HaveSameBands(GDALDataset& one, GDALDataset& other) {
  if (one.GetRasterCount() != other.GetRasterCount()) return false;
  for (int i = 1; i <= one.GetRasterCount(); ++i) {
    if (one.GetRasterBand(i)->GetRasterDataType() != other.GetRasterBand(i)->GetRasterDataType())
      return false;
  }
  return true;
}

// Whether nothing of the one lies outside of the other, which is how gdalwarp makes it unless it is told to
// cut something off.
bool LiesWithin(GDALDataset& one, GDALDataset& other) {
  constexpr int kSteps = 20;
  constexpr double kTolerance = 1.5;  // pixels of the other
  const Transformer transformer(
      GDALCreateGenImgProjTransformer2(GDALDataset::ToHandle(&one), GDALDataset::ToHandle(&other), nullptr));
  if (!transformer) return false;
  std::vector<double> xs;
  std::vector<double> ys;
  for (int i = 0; i <= kSteps; ++i) {
    const double x = static_cast<double>(one.GetRasterXSize()) * i / kSteps;
    const double y = static_cast<double>(one.GetRasterYSize()) * i / kSteps;
    xs.insert(xs.end(), {x, x, 0, static_cast<double>(one.GetRasterXSize())});
    ys.insert(ys.end(), {0, static_cast<double>(one.GetRasterYSize()), y, y});
  }
  std::vector<double> heights(xs.size(), 0);
  std::vector<int> found(xs.size(), FALSE);
  GDALGenImgProjTransform(transformer.get(), FALSE, static_cast<int>(xs.size()), xs.data(), ys.data(),
                          heights.data(), found.data());
  for (std::size_t i = 0; i < xs.size(); ++i) {
    const bool isWithin = found[i] != FALSE && xs[i] > -kTolerance && ys[i] > -kTolerance &&
                          xs[i] < other.GetRasterXSize() + kTolerance &&
                          ys[i] < other.GetRasterYSize() + kTolerance;
    if (!isWithin) return false;
  }
  return true;
}

// Whether the control points say of an image, within a hundredth of a pixel, what it says itself: in the way
// in which tiles are looked up, because there may be several between two coordinate systems.
bool Confirms(GDALDataset& points, GDALDataset& image) {
  constexpr double kTolerance = 0.01;
  std::array<double, 6> place = {};
  if (image.GetGeoTransform(place.data()) != CE_None || image.GetSpatialRef() == nullptr) return false;
  if (points.GetGCPCount() == 0 || points.GetGCPSpatialRef() == nullptr) return false;
  CPLStringList options;
  options.SetNameValue("DST_SRS", WktOf(*points.GetGCPSpatialRef()).c_str());
  const Transformer transformer(
      GDALCreateGenImgProjTransformer2(GDALDataset::ToHandle(&image), nullptr, options.List()));
  if (!transformer) return false;
  return std::all_of(points.GetGCPs(), points.GetGCPs() + points.GetGCPCount(), [&](const GDAL_GCP& point) {
    double x = point.dfGCPX;
    double y = point.dfGCPY;
    double height = 0;
    int isFound = FALSE;
    GDALGenImgProjTransform(transformer.get(), TRUE, 1, &x, &y, &height, &isFound);
    return isFound != FALSE && std::hypot(x - point.dfGCPPixel, y - point.dfGCPLine) < kTolerance;
  });
}

bool IsSame(const OGRSpatialReference& one, const OGRSpatialReference& other) {
  return one.IsSame(&other) != FALSE;
}

// Whether the bands call those values no data that the warp does not show.
bool HaveNodata(GDALDataset& image, const std::vector<double>& values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    int has = FALSE;
    const double own = image.GetRasterBand(static_cast<int>(i) + 1)->GetNoDataValue(&has);
    const bool isSame = has == FALSE ? std::isnan(values[i]) : own == values[i] || std::isnan(own);
    if (!isSame) return false;
  }
  return true;
}

// What a warped virtual raster is made of; empty where it shows anything else than that.
std::string BehindWarp(GDALDataset& image, const Request& request) {
  const std::string xml = XmlOf(image);
  if (xml.empty()) return "";
  const std::optional<PlainWarp> warp = PlainlyWarped(xml, FolderOf(request.input));
  if (!warp) return "";
  const OGRSpatialReference own = SrsOf(image, "");
  if (!IsSame(own, SrsOf(image, request.srs))) return "";
  const GDALDatasetUniquePtr behind = TryToOpen(warp->path);
  if (!behind || !HaveSameBands(*behind, image) || !HaveNodata(*behind, warp->nodata)) return "";
  const OGRSpatialReference taken = warp->srs.empty() ? own : SrsOf(image, warp->srs);
  return IsSame(taken, SrsOf(*behind, "")) && LiesWithin(*behind, image) ? warp->path : "";
}

std::string BehindPoints(const std::string& path) {
  const GDALDatasetUniquePtr image = TryToOpen(path);
  if (!image) return "";
  const std::string xml = XmlOf(*image);
  if (xml.empty()) return "";
  const std::string file =
      PlainlyShown(xml, FolderOf(path), image->GetRasterXSize(), image->GetRasterYSize());
  if (file.empty()) return "";
  const GDALDatasetUniquePtr behind = TryToOpen(file);
  const bool isSame = behind && behind->GetRasterXSize() == image->GetRasterXSize() &&
                      behind->GetRasterYSize() == image->GetRasterYSize() && HaveSameBands(*behind, *image);
  return isSame && Confirms(*image, *behind) ? file : "";
}

}  // namespace

Request SeenThrough(const Request& request, RunLog& log) {
  GdalErrors errors(log);
  const GDALDatasetUniquePtr image = TryToOpen(request.input);
  const std::string behind = image ? BehindWarp(*image, request) : "";
  if (behind.empty()) return request;
  const std::string own = BehindPoints(behind);
  Request seen = request;
  seen.input = own.empty() ? behind : own;
  seen.srs.clear();
  log.Line("The pixels are read from " + seen.input + ", which is shown there as it is.");
  return seen;
}

}  // namespace tiler
