#include "job/georeference.h"

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

#include "kvtools/kvtools.h"

namespace {

constexpr size_t kCornerCount = 4;
constexpr size_t kMaxProjectionText = 4095;
constexpr double kNotConverted = std::numeric_limits<double>::max();

using Transformation = std::unique_ptr<OGRCoordinateTransformation>;

// What the file itself says, copied so that it can be closed at once.
struct RasterInfo {
  double width = 0.0;
  double height = 0.0;
  double geoTransform[6] = {};
  OGRSpatialReference reference;
  std::string sourceEPSG;
  std::vector<TifCorner> metadataCorners;
};

// Longitude before latitude and easting before northing, whatever the authority says: all the
// references that meet here must agree, because IsSame compares the mapping too.
void UseTraditionalAxisOrder(OGRSpatialReference& reference) {
  reference.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
}

std::optional<OGRSpatialReference> MakeWgs84() {
  OGRSpatialReference reference;
  if (reference.SetWellKnownGeogCS("WGS84") != OGRERR_NONE) return std::nullopt;
  UseTraditionalAxisOrder(reference);
  return reference;
}

Transformation MakeTransformation(const OGRSpatialReference& from, const OGRSpatialReference& to) {
  return Transformation(OGRCreateCoordinateTransformation(&from, &to));
}

// The functions below that return a text say in it what keeps the file from being used; it is empty when
// nothing does.

std::string ImportReference(const char* projection, OGRSpatialReference& reference, std::string& code) {
  if (std::strlen(projection) > kMaxProjectionText || reference.importFromWkt(projection) != OGRERR_NONE) {
    return "its coordinate system is not understood";
  }
  UseTraditionalAxisOrder(reference);
  const char* authorityCode = reference.GetAttrValue("AUTHORITY", 1);
  if (authorityCode == nullptr) return "its coordinate system has no EPSG code";
  code = std::string("EPSG:") + authorityCode;
  return "";
}

// Corners that the file's metadata gives in WGS84 degrees; those that are missing or are not numbers
// are left out.
std::vector<TifCorner> ReadMetadataCorners(GDALDataset& dataset, double width, double height) {
  struct Key {
    const char* longitude;
    const char* latitude;
    double pixel;
    double line;
  };
  const Key keys[] = {{"UL_LON", "UL_LAT", 0.0, 0.0},
                      {"LL_LON", "LL_LAT", 0.0, height},
                      {"UR_LON", "UR_LAT", width, 0.0},
                      {"LR_LON", "LR_LAT", width, height}};
  std::vector<TifCorner> corners;
  char** metadata = dataset.GetMetadata("");
  for (const Key& key : keys) {
    const char* longitude = CSLFetchNameValue(metadata, key.longitude);
    const char* latitude = CSLFetchNameValue(metadata, key.latitude);
    if (longitude == nullptr || latitude == nullptr) continue;
    TifCorner corner{key.pixel, key.line, kNotConverted, kNotConverted};
    KVT_StringToDouble(longitude, &corner.dfLon);
    KVT_StringToDouble(latitude, &corner.dfLat);
    if (corner.dfLon != kNotConverted && corner.dfLat != kNotConverted) corners.push_back(corner);
  }
  return corners;
}

// In one line.
std::string LastGdalError() {
  std::string text = CPLGetLastErrorMsg();
  std::replace_if(
      text.begin(), text.end(), [](char letter) { return letter == '\r' || letter == '\n'; }, ' ');
  text.erase(text.find_last_not_of(" .") + 1);
  return text;
}

std::string ReadRasterInfo(const std::string& path, RasterInfo& info) {
  CPLErrorReset();
  const GDALDatasetUniquePtr dataset(GDALDataset::FromHandle(GDALOpen(path.c_str(), GA_ReadOnly)));
  if (dataset == nullptr) return "it cannot be opened: " + LastGdalError();
  const char* projection = dataset->GetProjectionRef();
  if (projection == nullptr || *projection == '\0') return "it names no coordinate system";
  if (dataset->GetGeoTransform(info.geoTransform) != CE_None) return "it does not say where it lies";
  info.width = dataset->GetRasterXSize();
  info.height = dataset->GetRasterYSize();
  info.metadataCorners = ReadMetadataCorners(*dataset, info.width, info.height);
  return ImportReference(projection, info.reference, info.sourceEPSG);
}

// The corners from the geotransform. Its rotation terms are ignored on purpose: the tools get the
// image as an upright one.
std::vector<TifCorner> ComputeCorners(const RasterInfo& info) {
  std::vector<TifCorner> corners;
  const std::optional<OGRSpatialReference> wgs84 = MakeWgs84();
  if (!wgs84) return corners;
  const Transformation toWgs84 = MakeTransformation(info.reference, *wgs84);
  if (toWgs84 == nullptr) return corners;

  const double* gt = info.geoTransform;
  const double left = gt[0];
  const double right = info.width * gt[1] + gt[0];
  const double top = gt[3];
  const double bottom = info.height * gt[5] + gt[3];
  corners = {{0.0, 0.0, left, top},
             {0.0, info.height, left, bottom},
             {info.width, 0.0, right, top},
             {info.width, info.height, right, bottom}};
  // A point that cannot be transformed is kept as it came out; the zone search refuses it.
  for (TifCorner& corner : corners) toWgs84->Transform(1, &corner.dfLon, &corner.dfLat);
  return corners;
}

// The WGS84 UTM zone of the centre of the corners.
std::optional<OGRSpatialReference> MakeCentreZone(const std::vector<TifCorner>& corners) {
  double longitude = 0.0;
  double latitude = 0.0;
  for (const TifCorner& corner : corners) {
    longitude += corner.dfLon;
    latitude += corner.dfLat;
  }
  longitude *= 0.25;
  latitude *= 0.25;
  const double zone = std::floor(longitude / 6.0) + 31.0;
  if (!(zone >= 1.0 && zone <= 60.0) || !std::isfinite(latitude)) return std::nullopt;

  std::optional<OGRSpatialReference> reference = MakeWgs84();
  if (!reference || reference->SetUTM(static_cast<int>(zone), latitude >= 0.0) != OGRERR_NONE) {
    return std::nullopt;
  }
  reference->SetLinearUnits("Meter", 1.0);
  UseTraditionalAxisOrder(*reference);
  return reference;
}

// Sets target to "EPSG:<code>" of the zone, or to the file's own text when the file is in it. A file in its
// zone whose reference has no code of its own, but only parts that have, gets the zone's for both.
void NameZone(OGRSpatialReference& zone, const OGRSpatialReference& reference, std::string& target,
              std::string& source) {
  const bool isInZone = zone.IsSame(&reference) != FALSE;
  if (isInZone && reference.GetAuthorityCode(nullptr) != nullptr) {
    target = source;
    return;
  }
  zone.AutoIdentifyEPSG();
  const char* code = zone.GetAuthorityCode("PROJCS");
  target = code != nullptr ? std::string("EPSG:") + code : std::string();
  if (isInZone) source = target;
}

bool ProjectCorners(const OGRSpatialReference& zone, std::vector<TifCorner>& corners) {
  const std::optional<OGRSpatialReference> wgs84 = MakeWgs84();
  if (!wgs84) return false;
  const Transformation toZone = MakeTransformation(*wgs84, zone);
  if (toZone == nullptr) return false;
  for (TifCorner& corner : corners) {
    corner.dfEasting = corner.dfLon;
    corner.dfNorthing = corner.dfLat;
    toZone->Transform(1, &corner.dfEasting, &corner.dfNorthing);
  }
  return true;
}

// Whether leaving the rotation out moves a corner by a pixel at least.
bool IsRotated(const RasterInfo& info) {
  const double* gt = info.geoTransform;
  const double shift = std::max(std::fabs(gt[2]) * info.height, std::fabs(gt[4]) * info.width);
  return shift >= std::min(std::fabs(gt[1]), std::fabs(gt[5]));
}

std::string ReadGeoInfo(const std::string& path, CTifData& data, RasterInfo& info) {
  std::vector<TifCorner>& corners = data.m_vCorners;
  corners.clear();
  std::string problem = ReadRasterInfo(path, info);
  if (!problem.empty()) return problem;
  data.m_strSourceEPSG = info.sourceEPSG;
  corners = info.metadataCorners.size() == kCornerCount ? info.metadataCorners : ComputeCorners(info);
  if (corners.size() != kCornerCount) return "its coordinates cannot be converted to longitude and latitude";

  std::optional<OGRSpatialReference> zone = MakeCentreZone(corners);
  if (!zone) return "its centre lies in no UTM zone";
  NameZone(*zone, info.reference, data.m_strTargetEPSG, data.m_strSourceEPSG);
  if (data.m_strTargetEPSG.empty() || !ProjectCorners(*zone, corners)) return "its UTM zone is not known";
  return "";
}

}  // namespace

int ReadTifGeoInfo(std::string path, std::vector<TifCorner>& corners, std::string& targetEPSG,
                   std::string& sourceEPSG) {
  CTifData data;
  RasterInfo info;
  const bool read = ReadGeoInfo(path, data, info).empty();
  corners = std::move(data.m_vCorners);
  targetEPSG = std::move(data.m_strTargetEPSG);
  sourceEPSG = std::move(data.m_strSourceEPSG);
  return read ? static_cast<int>(kCornerCount) : 0;
}

bool ReadTifData(const std::string& path, CTifData& data) {
  data.m_strFileName = path;
  RasterInfo info;
  if (!ReadGeoInfo(path, data, info).empty()) return false;
  data.m_bRotationLost = data.m_strTargetEPSG != data.m_strSourceEPSG &&
                         info.metadataCorners.size() != kCornerCount && IsRotated(info);
  return true;
}

std::string ExplainRefusal(const std::string& path) {
  CTifData data;
  RasterInfo info;
  return ReadGeoInfo(path, data, info);
}
