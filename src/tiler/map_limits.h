// Whether the tiles of a web map can hold an image.
//
// The map is cut open at 180 degrees of longitude and ends at 85 degrees of latitude. An image that lies on
// both sides of the cut would be stretched over the whole globe, where it is a speck at the coarsest level,
// and what lies beyond the ends would be missing without a word.
#ifndef MOSAICON_TILER_MAP_LIMITS_H_
#define MOSAICON_TILER_MAP_LIMITS_H_

class GDALDataset;
class OGRSpatialReference;

namespace tiler {

// Throws TilerError when the tiles would not hold the image.
void CheckExtent(GDALDataset& image, const OGRSpatialReference& srs);

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_LIMITS_H_
