#include "tiler/png_filter.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>

#include "tiler/mercator.h"

namespace tiler {

namespace {

constexpr std::size_t kMostBytes = 4 * std::size_t{kTileSize};
using Row = std::array<std::uint8_t, kMostBytes>;

enum FilterType : std::uint8_t { kSub = 1, kUp = 2, kAverage = 3, kPaeth = 4 };

// Without branches, so that compilers compute many of them at a time.
std::uint8_t PaethPredictor(std::uint8_t left, std::uint8_t above, std::uint8_t aboveLeft) {
  const auto byLeft = static_cast<std::int16_t>(std::abs(above - aboveLeft));
  const auto byAbove = static_cast<std::int16_t>(std::abs(left - aboveLeft));
  const auto byBoth = static_cast<std::int16_t>(std::abs(left + above - 2 * aboveLeft));
  const std::uint8_t other = byAbove <= byBoth ? above : aboveLeft;
  return byLeft <= std::min(byAbove, byBoth) ? left : other;
}

// What stands left of the first pixel is zero. The number of bytes of a pixel is known to the compiler.
template <std::size_t kPixelSize, typename Predictor>
unsigned Differences(const std::uint8_t* row, const std::uint8_t* above, std::size_t size, Row& out,
                     Predictor predictor) {
  for (std::size_t i = 0; i < kPixelSize; ++i) {
    out[i] = static_cast<std::uint8_t>(row[i] - predictor(0, above[i], 0));
  }
  for (std::size_t i = kPixelSize; i < size; ++i) {
    out[i] =
        static_cast<std::uint8_t>(row[i] - predictor(row[i - kPixelSize], above[i], above[i - kPixelSize]));
  }
  unsigned sum = 0;
  for (std::size_t i = 0; i < size; ++i) {
    sum += static_cast<std::uint8_t>(std::min<std::uint8_t>(out[i], static_cast<std::uint8_t>(-out[i])));
  }
  return sum;
}

template <std::size_t kPixelSize>
void FilterRowOf(const std::uint8_t* row, const std::uint8_t* above, std::size_t size,
                 std::uint8_t* filtered) {
  std::array<Row, 2> rows;  // the best one so far, and the next
  std::size_t best = 1;
  unsigned smallest = std::numeric_limits<unsigned>::max();
  const auto attempt = [&](FilterType type, auto predictor) {
    const unsigned sum = Differences<kPixelSize>(row, above, size, rows[1 - best], predictor);
    if (sum >= smallest) return;
    smallest = sum;
    best = 1 - best;
    filtered[0] = type;
  };
  using Byte = std::uint8_t;
  attempt(kSub, [](Byte left, Byte, Byte) { return left; });
  attempt(kUp, [](Byte, Byte up, Byte) { return up; });
  attempt(kAverage, [](Byte left, Byte up, Byte) { return static_cast<Byte>((left + up) / 2); });
  attempt(kPaeth, PaethPredictor);
  std::copy_n(rows[best].begin(), size, filtered + 1);
}

}  // namespace

void FilterRow(const std::uint8_t* row, const std::uint8_t* above, std::size_t size, std::size_t pixelSize,
               std::uint8_t* filtered) {
  switch (pixelSize) {
    case 1:
      return FilterRowOf<1>(row, above, size, filtered);
    case 2:
      return FilterRowOf<2>(row, above, size, filtered);
    case 3:
      return FilterRowOf<3>(row, above, size, filtered);
    default:
      return FilterRowOf<4>(row, above, size, filtered);
  }
}

}  // namespace tiler
