// Weighted sums of pixels, all channels at a time. Portable to what has SSE2, as every x86-64 has.
#ifndef MOSAICON_TILER_PIXEL_SUMS_H_
#define MOSAICON_TILER_PIXEL_SUMS_H_

#include <emmintrin.h>

#include <bit>
#include <cstdint>

#include "tiler/tile_pixels.h"

namespace tiler {

// Of the sums of colours that count as much as they are opaque, and of how much of them is. Kernels with
// negative weights go beyond what there is.
inline Pixel SeenOf(__m128 sums) {
  const float opaque = _mm_cvtss_f32(_mm_shuffle_ps(sums, sums, _MM_SHUFFLE(3, 3, 3, 3)));
  if (opaque < 0.5F) return {};
  const float share = 255 / opaque;
  const __m128 seen = _mm_mul_ps(sums, _mm_set_ps(1, share, share, share));
  // Rounds to the nearest; what is too large or too small stays in the range.
  const __m128i words = _mm_packs_epi32(_mm_cvtps_epi32(seen), _mm_setzero_si128());
  return std::bit_cast<Pixel>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
}

// Colours count as much as they are opaque.
class PixelSums {
 public:
  // isOpaque: the caller knows it to be. weight: of all weights, 1.
  template <bool isOpaque>
  void Add(const Pixel& pixel, float weight) {
    auto bytes = std::bit_cast<std::uint32_t>(pixel);
    if constexpr (!isOpaque) {
      weight *= static_cast<float>(pixel.alpha) * (1.0F / 255);
      bytes |= kAlphaByte;
    }
    const __m128i none = _mm_setzero_si128();
    const __m128i words = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(bytes)), none);
    const __m128 channels = _mm_cvtepi32_ps(_mm_unpacklo_epi16(words, none));
    m_sums = _mm_add_ps(m_sums, _mm_mul_ps(channels, _mm_set1_ps(weight)));
  }

  // As much of other sums.
  void Add(const PixelSums& other, float weight) {
    m_sums = _mm_add_ps(m_sums, _mm_mul_ps(other.m_sums, _mm_set1_ps(weight)));
  }

  // What is to be seen of it.
  Pixel Seen() const { return SeenOf(m_sums); }

 private:
  static constexpr std::uint32_t kAlphaByte = 0xFF000000;

  __m128 m_sums = _mm_setzero_ps();
};

}  // namespace tiler

#endif  // MOSAICON_TILER_PIXEL_SUMS_H_
