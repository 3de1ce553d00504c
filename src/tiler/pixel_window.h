#ifndef MOSAICON_TILER_PIXEL_WINDOW_H_
#define MOSAICON_TILER_PIXEL_WINDOW_H_

#include <cstdint>

namespace tiler {

// A part of an image, in pixels.
struct PixelWindow {
  std::int64_t x = 0;
  std::int64_t y = 0;
  int width = 0;
  int height = 0;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_PIXEL_WINDOW_H_
