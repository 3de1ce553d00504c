#include "tiler/area_row.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "tiler/pixel_sums.h"

namespace tiler {

namespace {

// Weights of rows are whole numbers of this sum: sums of bytes that are so weighted fit into 16 bits.
constexpr float kWhole = 256;
// Pixels; what is as far from a source as that is not in it.
constexpr double kFar = 1e6;

short Nearest(float value) {
  return static_cast<short>(_mm_cvtss_si32(_mm_set_ss(value)));
}

__m128 Column(__m128i words, float weight) {
  return _mm_mul_ps(_mm_cvtepi32_ps(words), _mm_set1_ps(weight));
}

}  // namespace

AreaSource::AreaSource(const PixelWindow& window, const std::vector<Pixel>& pixels)
    : m_width(window.width + 2 * kMargin),
      m_height(window.height + 2 * kMargin),
      m_left(window.x - kMargin),
      m_top(window.y - kMargin),
      m_pixels(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height)) {
  for (int row = 0; row < window.height; ++row) {
    const auto from = pixels.begin() + std::ptrdiff_t{row} * window.width;
    const auto to = m_pixels.begin() + std::ptrdiff_t{row + kMargin} * m_width + kMargin;
    std::transform(from, from + window.width, to,
                   [](const Pixel& pixel) { return pixel.alpha == 0 ? Pixel() : pixel; });
  }
}

const Pixel* AreaSource::At(int column, int row) const {
  return m_pixels.data() + std::ptrdiff_t{row} * m_width + column;
}

AreaRow::AreaRow(const AreaSource& source, double scaleX, double scaleY)
    : m_source(source), m_scaleX(scaleX), m_scaleY(scaleY) {}

void AreaRow::Axis::Cover(const Polynomial& positions, double origin, double scale, int count, int size) {
  const auto constant = static_cast<float>(std::clamp(positions.constant - origin - scale / 2, -kFar, kFar));
  const auto linear = static_cast<float>(positions.linear / count);
  const auto square = static_cast<float>(positions.square / count / count);
  const auto whole = static_cast<float>(scale);
  const float share = 1 / whole;
  // What lies further out is as empty as the margin.
  const auto last = static_cast<float>(size - AreaSource::kMargin);
  // In one go through all of them, which compilers do several at a time.
  for (int i = 0; i < count; ++i) {
    const auto place = static_cast<float>(i);
    const float from = std::min(std::max(constant + place * (linear + place * square), 0.0F), last);
    const int pixel = static_cast<int>(from);
    const float ofFirst = std::min(1 - (from - static_cast<float>(pixel)), whole);
    const float ofNext = std::min(whole - ofFirst, 1.0F);
    const auto k = static_cast<std::size_t>(i);
    first[k] = pixel;
    weights[0][k] = ofFirst * share;
    weights[1][k] = ofNext * share;
    weights[2][k] = (whole - ofFirst - ofNext) * share;
  }
}

void AreaRow::Fill(const Polynomial& xs, const Polynomial& ys, int count, Pixel* row) {
  m_columns.Cover(xs, static_cast<double>(m_source.Left()), m_scaleX, count, m_source.Width());
  m_rows.Cover(ys, static_cast<double>(m_source.Top()), m_scaleY, count, m_source.Height());
  for (int i = 0; i < count; ++i) row[i] = PixelAt(static_cast<std::size_t>(i));
}

Pixel AreaRow::PixelAt(std::size_t place) const {
  const __m128i none = _mm_setzero_si128();
  const Pixel* pixels = m_source.At(m_columns.first[place], m_rows.first[place]);
  const short upper = Nearest(m_rows.weights[0][place] * kWhole);
  const short lower = Nearest(m_rows.weights[2][place] * kWhole);
  const auto middle = static_cast<short>(static_cast<int>(kWhole) - upper - lower);
  __m128i left = none;   // two pixels of 16 bits a channel
  __m128i right = none;  // two more, of which the last has no weight
  for (const short weight : {upper, middle, lower}) {
    const __m128i weights = _mm_set1_epi16(weight);
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
    left = _mm_add_epi16(left, _mm_mullo_epi16(_mm_unpacklo_epi8(bytes, none), weights));
    right = _mm_add_epi16(right, _mm_mullo_epi16(_mm_unpackhi_epi8(bytes, none), weights));
    pixels += m_source.Width();
  }
  __m128 sum = Column(_mm_unpacklo_epi16(left, none), m_columns.weights[0][place]);
  sum = _mm_add_ps(sum, Column(_mm_unpackhi_epi16(left, none), m_columns.weights[1][place]));
  sum = _mm_add_ps(sum, Column(_mm_unpacklo_epi16(right, none), m_columns.weights[2][place]));
  return SeenOf(_mm_mul_ps(sum, _mm_set1_ps(1 / kWhole)));
}

}  // namespace tiler
