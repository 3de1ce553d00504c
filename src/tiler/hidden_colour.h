// A colour that shows nothing. Portable, no state.
#ifndef MOSAICON_TILER_HIDDEN_COLOUR_H_
#define MOSAICON_TILER_HIDDEN_COLOUR_H_

#include <cstdint>
#include <vector>

#include "tiler/tile_pixels.h"

namespace tiler {

// colour: 0 to 255, one value for grey, or red, green and blue.
Pixel PixelOf(const std::vector<int>& colour, std::uint8_t alpha);

// Makes the opaque pixels of the colour transparent; none when it is empty.
void Hide(const std::vector<int>& colour, std::vector<Pixel>& pixels);

}  // namespace tiler

#endif  // MOSAICON_TILER_HIDDEN_COLOUR_H_
