#include "tiler/source_pixels.h"

#include <mutex>

#include "tiler/hidden_colour.h"
#include "tiler/tiler_error.h"

namespace tiler {

namespace {

constexpr int kPixelBytes = static_cast<int>(sizeof(Pixel));

}  // namespace

SourcePixels::SourcePixels(const PixelSource& source, RunLog& log)
    : m_source(source),
      m_errors(log),
      m_image(source.shared ? source.shared : OpenShared(source.name, m_errors, kNotRead)) {}

void SourcePixels::Read(const PixelWindow& window, std::vector<Pixel>& pixels) {
  m_errors.Forget();
  pixels.assign(static_cast<std::size_t>(window.width) * static_cast<std::size_t>(window.height),
                {0, 0, 0, 255});
  if (pixels.empty()) return;
  CPLErr result = CE_None;
  {
    const std::lock_guard lock(m_image->mutex);
    result = ReadBands(window, pixels.front());
    if (result == CE_None && m_source.transparency == PixelSource::Transparency::kMask) {
      result = ReadMask(window, pixels.front());
    }
  }
  m_errors.Check(kNotRead);
  if (result != CE_None) throw TilerError(kNotRead);
  if (m_source.colours == 1) {
    for (Pixel& pixel : pixels) pixel.green = pixel.blue = pixel.red;
  }
  Hide(m_source.hidden, pixels);
}

CPLErr SourcePixels::ReadBands(const PixelWindow& window, Pixel& first) {
  const int bands =
      m_source.colours + (m_source.transparency == PixelSource::Transparency::kLastBand ? 1 : 0);
  constexpr GSpacing kFromRedToAlpha = 3;
  return m_image->dataset->RasterIO(
      GF_Read, static_cast<int>(window.x), static_cast<int>(window.y), window.width, window.height,
      &first.red, window.width, window.height, GDT_Byte, bands, nullptr, kPixelBytes,
      GSpacing{kPixelBytes} * window.width, bands == 2 ? kFromRedToAlpha : 1, nullptr);
}

CPLErr SourcePixels::ReadMask(const PixelWindow& window, Pixel& first) {
  return m_image->dataset->GetRasterBand(1)->GetMaskBand()->RasterIO(
      GF_Read, static_cast<int>(window.x), static_cast<int>(window.y), window.width, window.height,
      &first.alpha, window.width, window.height, GDT_Byte, kPixelBytes, GSpacing{kPixelBytes} * window.width,
      nullptr);
}

}  // namespace tiler
