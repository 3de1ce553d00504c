// Sizes and places on the screens, in pixels. The system's coordinates: x to the right, y downwards,
// the primary screen's upper left corner at 0, 0. Portable.
#ifndef MOSAICON_KVTOOLS_SCREEN_GEOMETRY_H_
#define MOSAICON_KVTOOLS_SCREEN_GEOMETRY_H_

#include <vector>

struct PixelSize {
  int width = 0;
  int height = 0;

  bool operator==(const PixelSize&) const = default;
};

struct PixelRect {
  int left = 0;
  int top = 0;
  PixelSize size;

  bool operator==(const PixelRect&) const = default;
};

// The size of the smallest rectangle around all of them; 0 x 0 for none.
PixelSize EnclosingSize(const std::vector<PixelRect>& rects);

// Where a bitmap goes that is drawn for 96 dots per inch: enlarged for dpi, shrunk in proportion where
// it would exceed area, and in the middle of area. Neither size may have a side below 1.
PixelRect PlaceInMiddle(PixelSize bitmap, int dpi, const PixelRect& area);

#endif  // MOSAICON_KVTOOLS_SCREEN_GEOMETRY_H_
