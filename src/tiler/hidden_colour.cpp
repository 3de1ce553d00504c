#include "tiler/hidden_colour.h"

namespace tiler {

Pixel PixelOf(const std::vector<int>& colour, std::uint8_t alpha) {
  const auto channel = [&colour](std::size_t i) {
    return static_cast<std::uint8_t>(colour[colour.size() == 1 ? 0 : i]);
  };
  return {channel(0), channel(1), channel(2), alpha};
}

void Hide(const std::vector<int>& colour, std::vector<Pixel>& pixels) {
  if (colour.empty()) return;
  const Pixel hidden = PixelOf(colour, 255);
  for (Pixel& pixel : pixels) {
    if (pixel == hidden) pixel.alpha = 0;
  }
}

}  // namespace tiler
