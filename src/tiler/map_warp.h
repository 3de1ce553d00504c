// An image in the map's projection: how large its pixels are there, and where it lies.
#ifndef MOSAICON_TILER_MAP_WARP_H_
#define MOSAICON_TILER_MAP_WARP_H_

#include <gdal_priv.h>

#include <string>
#include <vector>

#include "tiler/pyramid.h"

class OGRSpatialReference;

namespace tiler {

class GdalErrors;

// The coordinate system that is asked for; empty: the image's own.
OGRSpatialReference SrsOf(GDALDataset& image, const std::string& wanted);

// Whether an image in degrees reaches further north or south than the map.
bool ReachesBeyondTheMap(GDALDataset& image, const OGRSpatialReference& srs);

// As gdal2tiles does it: a virtual raster, whose pixels are those of the image, by nearest neighbour. What
// lies beyond the map is cut off. Throws TilerError.
GDALDatasetUniquePtr WarpedToMap(GDALDataset& image, const OGRSpatialReference& srs, GdalErrors& errors);

// Of an image in the map's projection. Throws TilerError when it is turned.
MapImage MapImageOf(GDALDataset& image);

// What the image itself calls no data, a value for each band that does; empty when none does, or when a pixel
// cannot have such a value.
std::vector<int> NodataOf(GDALDataset& image);

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_WARP_H_
