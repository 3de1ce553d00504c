#include "tiler/area_row.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>

namespace tiler {

namespace {

// Pixels of the image that are read at a time. The last has no weight.
constexpr int kAtATime = 4;
// Weights of rows are whole numbers of this sum: sums of bytes that are so weighted fit into 16 bits.
constexpr float kWhole = 256;
// Pixels; what is as far from a window as that is not in it.
constexpr double kFar = 1e6;

short Nearest(float value) {
  return static_cast<short>(_mm_cvtss_si32(_mm_set_ss(value)));
}

__m128 Column(__m128i words, float weight) {
  return _mm_mul_ps(_mm_cvtepi32_ps(words), _mm_set1_ps(weight));
}

}  // namespace

AreaRow::AreaRow(double scaleX, double scaleY, const PixelWindow& window, const Pixel* pixels)
    : m_scaleX(scaleX), m_scaleY(scaleY), m_window(window), m_pixels(pixels) {}

bool AreaRow::Axis::Cover(const Polynomial& positions, double origin, double scale, int count, int last) {
  const auto constant = static_cast<float>(positions.constant - origin - scale / 2);
  const auto linear = static_cast<float>(positions.linear / count);
  const auto square = static_cast<float>(positions.square / count / count);
  const auto whole = static_cast<float>(scale);
  const float share = 1 / whole;
  // Cells are small: what begins, lies in the middle and ends near the window is near it everywhere.
  const auto isNear = [&](double place) { return std::fabs(positions.At(place) - origin) < kFar; };
  if (!isNear(0) || !isNear(0.5) || !isNear(1)) return false;
  // In one go through all of them, which compilers do several at a time.
  float least = constant;
  float most = constant;
  for (int i = 0; i < count; ++i) {
    const auto place = static_cast<float>(i);
    const float from = constant + place * (linear + place * square);
    least = std::min(least, from);
    most = std::max(most, from);
    const int pixel = static_cast<int>(from);
    const float ofFirst = 1 - (from - static_cast<float>(pixel));
    const float ofNext = std::min(whole - ofFirst, 1.0F);
    const auto k = static_cast<std::size_t>(i);
    first[k] = pixel;
    weights[0][k] = ofFirst * share;
    weights[1][k] = ofNext * share;
    weights[2][k] = (whole - ofFirst - ofNext) * share;
  }
  return least >= 0 && most < static_cast<float>(last + 1);
}

bool AreaRow::Fill(const Polynomial& xs, const Polynomial& ys, int count, Pixel* row) {
  const bool isWithin =
      m_columns.Cover(xs, static_cast<double>(m_window.x), m_scaleX, count, m_window.width - kAtATime) &&
      m_rows.Cover(ys, static_cast<double>(m_window.y), m_scaleY, count, m_window.height - 3);
  if (!isWithin) return false;
  for (int i = 0; i < count; ++i) row[i] = PixelAt(static_cast<std::size_t>(i));
  return true;
}

Pixel AreaRow::PixelAt(std::size_t place) const {
  const __m128i none = _mm_setzero_si128();
  const Pixel* pixels =
      m_pixels + std::ptrdiff_t{m_rows.first[place]} * m_window.width + m_columns.first[place];
  const auto upper = Nearest(m_rows.weights[0][place] * kWhole);
  const auto lower = Nearest(m_rows.weights[2][place] * kWhole);
  const auto middle = static_cast<short>(static_cast<int>(kWhole) - upper - lower);
  __m128i left = none;   // two pixels of 16 bits a channel
  __m128i right = none;  // two more
  for (const short weight : {upper, middle, lower}) {
    const __m128i weights = _mm_set1_epi16(weight);
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
    left = _mm_add_epi16(left, _mm_mullo_epi16(_mm_unpacklo_epi8(bytes, none), weights));
    right = _mm_add_epi16(right, _mm_mullo_epi16(_mm_unpackhi_epi8(bytes, none), weights));
    pixels += m_window.width;
  }
  __m128 sum = Column(_mm_unpacklo_epi16(left, none), m_columns.weights[0][place]);
  sum = _mm_add_ps(sum, Column(_mm_unpackhi_epi16(left, none), m_columns.weights[1][place]));
  sum = _mm_add_ps(sum, Column(_mm_unpacklo_epi16(right, none), m_columns.weights[2][place]));
  const __m128i words = _mm_packs_epi32(_mm_cvtps_epi32(_mm_mul_ps(sum, _mm_set1_ps(1 / kWhole))), none);
  return std::bit_cast<Pixel>(_mm_cvtsi128_si32(_mm_packus_epi16(words, none)));
}

}  // namespace tiler
