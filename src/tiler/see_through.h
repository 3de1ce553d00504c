// Virtual rasters that only say where an image lies.
#ifndef MOSAICON_TILER_SEE_THROUGH_H_
#define MOSAICON_TILER_SEE_THROUGH_H_

#include "tiler/request.h"

namespace tiler {

class RunLog;

// The request for the image that is behind the one of this request, at the places where that shows it, so
// that no pixel is taken for its neighbour on the way:
// - gdalwarp's virtual raster shows the pixels of another image, by nearest neighbour, all of them and as
// they
//   are;
// - gdal_translate's shows another image whole and gives it control points that say what the image says
// itself. The same request where there is nothing of the kind, or any doubt. Throws TilerError.
Request SeenThrough(const Request& request, RunLog& log);

}  // namespace tiler

#endif  // MOSAICON_TILER_SEE_THROUGH_H_
