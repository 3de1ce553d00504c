#include <algorithm>
#include <array>
#include <limits>

#include "tiler/hidden_colour.h"
#include "tiler/map_positions.h"
#include "tiler/source_pixels.h"
#include "tiler/window_reader.h"

namespace tiler {

namespace {

std::array<double, 6> PlaceOf(const MapImage& image) {
  return {image.left, image.pixelWidth, 0, image.top, 0, image.pixelHeight};
}

// The smallest window of the source image that holds these pixels; without any, an empty one.
PixelWindow BoxAround(const std::vector<SourcePixel>& pixels) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  std::int32_t left = kMost;
  std::int32_t top = kMost;
  std::int32_t right = -1;
  std::int32_t bottom = -1;
  for (const SourcePixel& pixel : pixels) {
    if (pixel.IsOutside()) continue;
    left = std::min(left, pixel.column);
    right = std::max(right, pixel.column);
    top = std::min(top, pixel.row);
    bottom = std::max(bottom, pixel.row);
  }
  if (right < 0) return {};
  return {left, top, right - left + 1, bottom - top + 1};
}

class DirectReader : public WindowReader {
 public:
  DirectReader(const MapView& view, RunLog& log)
      : m_source(view.direct->pixels, log),
        m_positions(m_source.Image(), view.direct->srs, PlaceOf(view.image)),
        m_index([this](std::vector<double>& xs, std::vector<double>& ys) { m_positions.Ask(xs, ys); },
                m_source.Width(), m_source.Height()) {
    if (!view.direct->outside.empty()) m_outside = PixelOf(view.direct->outside, 0);
  }

  void Read(const PixelWindow& window, std::vector<Pixel>& pixels) override {
    const std::vector<SourcePixel>& index = m_index.Of(window);
    const PixelWindow box = BoxAround(index);
    m_source.Read(box, m_box);
    pixels.resize(index.size());
    for (std::size_t i = 0; i < index.size(); ++i) {
      const SourcePixel& each = index[i];
      pixels[i] = each.IsOutside()
                      ? m_outside
                      : m_box[static_cast<std::size_t>((each.row - box.y) * box.width + each.column - box.x)];
    }
  }

 private:
  SourcePixels m_source;
  MapPositions m_positions;
  WarpIndex m_index;
  Pixel m_outside;
  std::vector<Pixel> m_box;
};

}  // namespace

std::unique_ptr<WindowReader> MakeDirectReader(const MapView& view, RunLog& log) {
  return std::make_unique<DirectReader>(view, log);
}

}  // namespace tiler
