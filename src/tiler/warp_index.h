// Which pixel of the source image each pixel of the map shows: nearest neighbour, exactly, without asking for
// the exact position of every pixel. Portable.
#ifndef MOSAICON_TILER_WARP_INDEX_H_
#define MOSAICON_TILER_WARP_INDEX_H_

#include <cstdint>
#include <vector>

#include "tiler/cell_polynomial.h"
#include "tiler/pixel_window.h"

namespace tiler {

struct SourcePixel {
  std::int32_t column = -1;  // -1: outside of the source image
  std::int32_t row = -1;

  bool IsOutside() const { return column < 0; }
  bool operator==(const SourcePixel&) const = default;
};

// Positions in the source image are smooth: within a cell of the map they are close to a polynomial. Where
// that is not close enough, and for pixels whose position is so near to the border of a source pixel that it
// could be the neighbour, the exact position is asked for. One thread at a time.
class WarpIndex {
 public:
  // exact: of positions in the map's image, in pixels.
  WarpIndex(ExactPositions exact, int sourceWidth, int sourceHeight);

  // For each pixel of a window of the map's image, in rows.
  const std::vector<SourcePixel>& Of(const PixelWindow& window);

  // The same, each pixel by its exact position.
  std::vector<SourcePixel> ExactlyOf(const PixelWindow& window) const;

  // How many positions were asked for since this was made.
  std::int64_t Asked() const { return m_asked; }

 private:
  struct Cell;

  void Ask(std::vector<double>& xs, std::vector<double>& ys);
  SourcePixel PixelAt(double x, double y) const;
  // Fills a cell and notes the pixels whose exact position is wanted.
  void FillCell(const Cell& cell, const PixelWindow& window);
  void AskForDoubtful(const PixelWindow& window);

  ExactPositions m_exact;
  double m_sourceWidth;
  double m_sourceHeight;
  std::int64_t m_asked = 0;
  std::vector<SourcePixel> m_pixels;
  std::vector<std::size_t> m_doubtful;  // of m_pixels
};

}  // namespace tiler

#endif  // MOSAICON_TILER_WARP_INDEX_H_
