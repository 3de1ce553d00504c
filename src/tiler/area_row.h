// Averages over areas of the source image for a whole row of map pixels at a time: what most tiles are made
// of. Portable to what has SSE2, as every x86-64 has.
#ifndef MOSAICON_TILER_AREA_ROW_H_
#define MOSAICON_TILER_AREA_ROW_H_

#include <array>

#include "tiler/cell_polynomial.h"
#include "tiler/pixel_window.h"
#include "tiler/tile_pixels.h"

namespace tiler {

// For opaque images, where a pixel of the map covers one to two pixels of the image each way. The same as
// AxisWeights gives, but for roundings.
class AreaRow {
 public:
  static constexpr int kLongest = kTileSize;

  // Scales: pixels of the image that a pixel of the map covers. window: of the image, which pixels hold.
  AreaRow(double scaleX, double scaleY, const PixelWindow& window, const Pixel* pixels);

  static bool Suits(double scale) { return scale >= 1 && scale <= kMost; }

  // Fills a row of so many pixels, whose positions the polynomials give for places from 0 to 1. False, and
  // nothing is done, where a part of what they cover is not in the window.
  bool Fill(const Polynomial& xs, const Polynomial& ys, int count, Pixel* row);

 private:
  static constexpr double kMost = 2;

  // Along an axis: the first pixel that is covered, and how much of it, of the next and of the one after
  // that.
  struct Axis {
    std::array<int, kLongest> first;
    std::array<std::array<float, kLongest>, 3> weights;

    // Whether all first pixels are from 0 to last.
    bool Cover(const Polynomial& positions, double origin, double scale, int count, int last);
  };

  Pixel PixelAt(std::size_t place) const;

  double m_scaleX;
  double m_scaleY;
  PixelWindow m_window;
  const Pixel* m_pixels;
  Axis m_columns;
  Axis m_rows;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_AREA_ROW_H_
