// Reads windows of the image as the map shows it.
#ifndef MOSAICON_TILER_WINDOW_READER_H_
#define MOSAICON_TILER_WINDOW_READER_H_

#include <memory>
#include <vector>

#include "tiler/map_view.h"
#include "tiler/tile_pixels.h"
#include "tiler/warp_index.h"

namespace tiler {

class RunLog;

// One thread at a time: each has a reader of its own.
class WindowReader {
 public:
  virtual ~WindowReader() = default;

  // Fills pixels, in rows. The window lies in the map's image and is not empty. Throws TilerError.
  virtual void Read(const PixelWindow& window, std::vector<Pixel>& pixels) = 0;
};

// Through the virtual raster of the view: everything that GDAL can, pixel by pixel. Throws TilerError.
std::unique_ptr<WindowReader> MakeVirtualReader(const MapView& view, RunLog& log);

// From the source image itself, by an index of its pixels; for views that have a DirectWarp. Many times
// quicker, and the same pixels. Throws TilerError.
std::unique_ptr<WindowReader> MakeDirectReader(const MapView& view, RunLog& log);

}  // namespace tiler

#endif  // MOSAICON_TILER_WINDOW_READER_H_
