// The coordinate system of the map, and when an image lies in it already.
#ifndef MOSAICON_TILER_MAP_SRS_H_
#define MOSAICON_TILER_MAP_SRS_H_

#include <string>

class GDALDataset;
class OGRSpatialReference;

namespace tiler {

// Web Mercator, easting before northing.
OGRSpatialReference MapSrs();

// Whether an image in this coordinate system is tiled as it is, without being reprojected.
bool IsInMapSrs(GDALDataset& image, const OGRSpatialReference& srs);

// Well-known text.
std::string WktOf(const OGRSpatialReference& srs);

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_SRS_H_
