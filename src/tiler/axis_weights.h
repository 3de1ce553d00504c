// Which pixels along an axis of the source image a pixel of the map is made of, and how much of each.
// Portable, no state.
#ifndef MOSAICON_TILER_AXIS_WEIGHTS_H_
#define MOSAICON_TILER_AXIS_WEIGHTS_H_

#include <algorithm>
#include <cstddef>
#include <vector>

namespace tiler {

// kAverage: of the area that is covered; where that is less than a pixel, kCubic. The others are the usual
// ones, as wide as the pixel of the map where that is larger than one of the image.
enum class Resampling { kAverage, kNearest, kBilinear, kCubic, kCubicSpline, kLanczos };

class AxisWeights {
 public:
  struct Range {
    int first = 0;  // pixel
    int count = 0;
  };

  // scale: source pixels that a pixel of the map covers along the axis, above 0.
  AxisWeights(Resampling resampling, double scale);

  // Whether weights are shares of an area; those of kernels have no such meaning where a part of them is
  // missing.
  bool IsArea() const { return m_isArea; }
  // What lies further from a position than so many pixels never counts.
  double Reach() const { return m_reach; }
  // A range has no more pixels.
  std::size_t Most() const { return static_cast<std::size_t>(2 * m_reach) + 2; }

  // For a position in the source image, in pixels from its edge: fills the weights of the range, whose sum is
  // 1. weights has room for Most().
  Range At(double position, float* weights) const {
    return m_isArea ? AreaAt(position, weights) : KernelAt(position, weights);
  }

 private:
  Range AreaAt(double position, float* weights) const {
    const double from = position - m_reach;
    const int first = WholeBelow(from);
    // What is still to be covered, in pixels.
    double rest = 2 * m_reach;
    const double ofFirst = std::min(first + 1 - from, rest);
    weights[0] = static_cast<float>(ofFirst * m_share);
    rest -= ofFirst;
    for (int i = 1; i < m_count; ++i) {
      weights[i] = static_cast<float>(std::clamp(rest, 0.0, 1.0) * m_share);
      rest -= 1;
    }
    return {first, m_count};
  }
  Range KernelAt(double position, float* weights) const;

  static int WholeBelow(double position) {
    const int whole = static_cast<int>(position);
    return whole - (position < whole ? 1 : 0);
  }

  double (*m_kernel)(double) = nullptr;
  bool m_isArea;
  double m_stretch = 1;  // of the kernel
  double m_reach;
  double m_share = 1;  // of a whole pixel in the area
  int m_count = 0;     // of pixels that an area may touch
};

}  // namespace tiler

#endif  // MOSAICON_TILER_AXIS_WEIGHTS_H_
