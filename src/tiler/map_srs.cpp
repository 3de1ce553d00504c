#include "tiler/map_srs.h"

#include <cpl_conv.h>
#include <gdal_priv.h>
#include <ogr_spatialref.h>

namespace tiler {

namespace {

constexpr int kWebMercator = 3857;  // EPSG

std::string Proj4Of(const OGRSpatialReference& srs) {
  char* text = nullptr;
  srs.exportToProj4(&text);
  std::string copy = text == nullptr ? "" : text;
  CPLFree(text);
  return copy;
}

}  // namespace

OGRSpatialReference MapSrs() {
  OGRSpatialReference srs;
  srs.importFromEPSG(kWebMercator);
  srs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  return srs;
}

bool IsInMapSrs(GDALDataset& image, const OGRSpatialReference& srs) {
  return image.GetGCPCount() == 0 && Proj4Of(srs) == Proj4Of(MapSrs());
}

std::string WktOf(const OGRSpatialReference& srs) {
  char* text = nullptr;
  srs.exportToWkt(&text);
  std::string copy = text == nullptr ? "" : text;
  CPLFree(text);
  return copy;
}

}  // namespace tiler
