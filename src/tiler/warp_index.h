// Which pixel of the source image each pixel of the map shows: nearest neighbour, exactly, without asking for
// the exact position of every pixel. Portable.
#ifndef MOSAICON_TILER_WARP_INDEX_H_
#define MOSAICON_TILER_WARP_INDEX_H_

#include <cstdint>
#include <functional>
#include <vector>

namespace tiler {

// A part of an image, in pixels.
struct PixelWindow {
  std::int64_t x = 0;
  std::int64_t y = 0;
  int width = 0;
  int height = 0;
};

struct SourcePixel {
  std::int32_t column = -1;  // -1: outside of the source image
  std::int32_t row = -1;

  bool IsOutside() const { return column < 0; }
  bool operator==(const SourcePixel&) const = default;
};

// Positions in the source image are smooth: within a cell of the map they are close to a polynomial, whose
// values are known from few points. Points between show how close. Where that is not close enough, and for
// pixels whose position is so near to the border of a source pixel that it could be the neighbour, the exact
// position is asked for. One thread at a time.
class WarpIndex {
 public:
  // Turns positions in the map's image, in pixels, into positions in the source image. What has none becomes
  // infinite or no number.
  using Exact = std::function<void(std::vector<double>& xs, std::vector<double>& ys)>;

  WarpIndex(Exact exact, int sourceWidth, int sourceHeight);

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

  Exact m_exact;
  double m_sourceWidth;
  double m_sourceHeight;
  std::int64_t m_asked = 0;
  std::vector<SourcePixel> m_pixels;
  std::vector<std::size_t> m_doubtful;  // of m_pixels
};

}  // namespace tiler

#endif  // MOSAICON_TILER_WARP_INDEX_H_
