// The filters of PNG: each row as the difference to what stands left of it and above it. Portable, no state.
#ifndef MOSAICON_TILER_PNG_FILTER_H_
#define MOSAICON_TILER_PNG_FILTER_H_

#include <cstddef>
#include <cstdint>

namespace tiler {

// Writes the number of the filter that leaves the smallest differences, and behind it the size differences.
// above: the row above, zeroes for the first one. pixelSize: bytes of a pixel, 1 to 4.
void FilterRow(const std::uint8_t* row, const std::uint8_t* above, std::size_t size, std::size_t pixelSize,
               std::uint8_t* filtered);

}  // namespace tiler

#endif  // MOSAICON_TILER_PNG_FILTER_H_
