#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/hidden_colour.h"
#include "tiler/tiler_error.h"
#include "tiler/window_reader.h"

namespace tiler {

namespace {

constexpr int kPixelBytes = static_cast<int>(sizeof(Pixel));

class VirtualReader : public WindowReader {
 public:
  VirtualReader(const MapView& view, RunLog& log)
      : m_colours(view.colours),
        m_hidden(view.hidden),
        m_errors(log),
        m_dataset(OpenImage(view.xml, m_errors, kNotRead)) {}

  void Read(const PixelWindow& window, std::vector<Pixel>& pixels) override {
    pixels.resize(static_cast<std::size_t>(window.width) * static_cast<std::size_t>(window.height));
    Pixel& first = pixels.front();
    std::uint8_t* channels[] = {&first.red, &first.green, &first.blue};
    for (int i = 0; i < m_colours; ++i) ReadBand(*m_dataset->GetRasterBand(i + 1), window, channels[i]);
    ReadBand(*m_dataset->GetRasterBand(1)->GetMaskBand(), window, &first.alpha);
    if (m_colours == 1) {
      for (Pixel& pixel : pixels) pixel.green = pixel.blue = pixel.red;
    }
    Hide(m_hidden, pixels);
  }

 private:
  void ReadBand(GDALRasterBand& band, const PixelWindow& window, std::uint8_t* first) {
    m_errors.Forget();
    const CPLErr result = band.RasterIO(GF_Read, static_cast<int>(window.x), static_cast<int>(window.y),
                                        window.width, window.height, first, window.width, window.height,
                                        GDT_Byte, kPixelBytes, GSpacing{kPixelBytes} * window.width, nullptr);
    m_errors.Check(kNotRead);
    if (result != CE_None) throw TilerError(kNotRead);
  }

  int m_colours;
  std::vector<int> m_hidden;
  GdalErrors m_errors;
  GDALDatasetUniquePtr m_dataset;
};

}  // namespace

std::unique_ptr<WindowReader> MakeVirtualReader(const MapView& view, RunLog& log) {
  return std::make_unique<VirtualReader>(view, log);
}

}  // namespace tiler
