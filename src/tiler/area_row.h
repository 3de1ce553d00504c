// Averages over areas of the source image for a whole row of map pixels at a time: what tiles are made of but
// for images that are partly half transparent. Portable to what has SSE2, as every x86-64 has.
#ifndef MOSAICON_TILER_AREA_ROW_H_
#define MOSAICON_TILER_AREA_ROW_H_

#include <array>
#include <vector>

#include "tiler/cell_polynomial.h"
#include "tiler/pixel_window.h"
#include "tiler/tile_pixels.h"

namespace tiler {

// A part of an image whose pixels are opaque, or hidden altogether, with as much emptiness around it as a row
// may touch.
class AreaSource {
 public:
  static constexpr int kMargin = 4;

  // pixels: of the window, in rows.
  AreaSource(const PixelWindow& window, const std::vector<Pixel>& pixels);

  int Width() const { return m_width; }
  int Height() const { return m_height; }
  // Where its first pixel lies in the image.
  std::int64_t Left() const { return m_left; }
  std::int64_t Top() const { return m_top; }
  // Transparent black where nothing is to be seen.
  const Pixel* At(int column, int row) const;

 private:
  int m_width;
  int m_height;
  std::int64_t m_left;
  std::int64_t m_top;
  std::vector<Pixel> m_pixels;
};

// The same as AxisWeights and PixelSums give, but for roundings.
class AreaRow {
 public:
  // Scales: pixels of the image that a pixel of the map covers.
  AreaRow(const AreaSource& source, double scaleX, double scaleY);

  static bool Suits(double scale) { return scale > 0 && scale <= kMost; }

  // Fills a row of so many pixels, whose positions in the image the polynomials give for places from 0 to 1.
  void Fill(const Polynomial& xs, const Polynomial& ys, int count, Pixel* row);

 private:
  static constexpr double kMost = 2;

  // Along an axis: the first pixel that is covered, and how much of it, of the next and of the one after
  // that.
  struct Axis {
    std::array<int, kTileSize> first;
    std::array<std::array<float, kTileSize>, 3> weights;

    // origin: of the source; size: along the axis.
    void Cover(const Polynomial& positions, double origin, double scale, int count, int size);
  };

  Pixel PixelAt(std::size_t place) const;

  const AreaSource& m_source;
  double m_scaleX;
  double m_scaleY;
  Axis m_columns;
  Axis m_rows;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_AREA_ROW_H_
