// Whether a web map can hold an orthophoto at all. Portable.
#ifndef MOSAICON_BATCH_MAP_EXTENT_H_
#define MOSAICON_BATCH_MAP_EXTENT_H_

#include <string>
#include <vector>

#include "job/tif_data.h"

// Why the tiles would not hold the image with these four corners, in one sentence; empty when they would.
// The tiling script looks closer, but sees an image that had to be reprojected only afterwards, and the
// globe in one UTM zone is nothing that can be told from a small image any more.
std::string FindExtentProblem(const std::vector<TifCorner>& corners);

#endif  // MOSAICON_BATCH_MAP_EXTENT_H_
