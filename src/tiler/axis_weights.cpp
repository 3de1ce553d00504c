#include "tiler/axis_weights.h"

#include <cmath>
#include <numbers>

namespace tiler {

namespace {

double Triangle(double distance) {
  return std::max(0.0, 1 - distance);
}

// Keys' cubic convolution, with a = -1/2.
double Cubic(double distance) {
  if (distance < 1) return (1.5 * distance - 2.5) * distance * distance + 1;
  if (distance < 2) return ((-0.5 * distance + 2.5) * distance - 4) * distance + 2;
  return 0;
}

double CubicSpline(double distance) {
  if (distance < 1) return (0.5 * distance - 1) * distance * distance + 2.0 / 3;
  if (distance < 2) return (2 - distance) * (2 - distance) * (2 - distance) / 6;
  return 0;
}

double Sinc(double distance) {
  const double angle = std::numbers::pi * distance;
  return angle == 0 ? 1 : std::sin(angle) / angle;
}

double Lanczos(double distance) {
  return distance < 3 ? Sinc(distance) * Sinc(distance / 3) : 0;
}

double Nearest(double) {
  return 1;
}

struct Kernel {
  double (*weight)(double distance);
  double reach;
};

Kernel KernelOf(Resampling resampling) {
  switch (resampling) {
    case Resampling::kNearest:
      return {Nearest, 0};
    case Resampling::kBilinear:
      return {Triangle, 1};
    case Resampling::kCubicSpline:
      return {CubicSpline, 2};
    case Resampling::kLanczos:
      return {Lanczos, 3};
    case Resampling::kAverage:
    case Resampling::kCubic:
      break;
  }
  return {Cubic, 2};
}

}  // namespace

AxisWeights::AxisWeights(Resampling resampling, double scale)
    : m_isArea(resampling == Resampling::kAverage && scale >= 1) {
  if (m_isArea) {
    m_reach = scale / 2;
    m_share = 1 / scale;
    m_count = static_cast<int>(std::ceil(2 * m_reach)) + 1;
    return;
  }
  const Kernel kernel = KernelOf(resampling);
  m_kernel = kernel.weight;
  m_stretch = std::max(1.0, scale);
  m_reach = kernel.reach * m_stretch;
}

AxisWeights::Range AxisWeights::KernelAt(double position, float* weights) const {
  if (m_reach == 0) {
    weights[0] = 1;
    return {WholeBelow(position), 1};
  }
  // Middles of pixels.
  const int first = WholeBelow(position - m_reach + 0.5);
  const int last = WholeBelow(position + m_reach - 0.5);
  double sum = 0;
  for (int i = first; i <= last; ++i) {
    const double weight = m_kernel(std::fabs(i + 0.5 - position) / m_stretch);
    weights[i - first] = static_cast<float>(weight);
    sum += weight;
  }
  for (int i = first; i <= last; ++i) weights[i - first] /= static_cast<float>(sum);
  return {first, last - first + 1};
}

}  // namespace tiler
