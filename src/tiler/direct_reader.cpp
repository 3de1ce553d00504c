#include <cpl_string.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <array>
#include <limits>

#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/hidden_colour.h"
#include "tiler/map_srs.h"
#include "tiler/tiler_error.h"
#include "tiler/window_reader.h"

namespace tiler {

namespace {

constexpr int kPixelBytes = static_cast<int>(sizeof(Pixel));

Transformer MakeTransformer(GDALDataset& source, const MapView& view) {
  CPLStringList options;
  options.SetNameValue("SRC_SRS", view.direct->srs.c_str());
  options.SetNameValue("DST_SRS", WktOf(MapSrs()).c_str());
  Transformer transformer(
      GDALCreateGenImgProjTransformer2(GDALDataset::ToHandle(&source), nullptr, options.List()));
  if (!transformer) throw TilerError(kNotRead);
  const MapImage& image = view.image;
  const std::array<double, 6> place = {image.left, image.pixelWidth, 0, image.top, 0, image.pixelHeight};
  GDALSetGenImgProjTransformerDstGeoTransform(transformer.get(), place.data());
  return transformer;
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
      : m_colours(view.colours),
        m_hasAlpha(view.direct->hasAlpha),
        m_hidden(view.direct->transparent.empty() ? view.hidden : view.direct->transparent),
        m_errors(log),
        m_source(view.direct->shared ? view.direct->shared
                                     : OpenShared(view.direct->source, m_errors, kNotRead)),
        m_index([this](std::vector<double>& xs, std::vector<double>& ys) { Transform(xs, ys); },
                m_source->dataset->GetRasterXSize(), m_source->dataset->GetRasterYSize()) {
    const std::lock_guard lock(m_source->mutex);
    m_transformer = MakeTransformer(*m_source->dataset, view);
    // What lies outside of the source image has the transparent colour.
    if (!view.direct->transparent.empty()) m_outside = PixelOf(view.direct->transparent, 0);
  }

  void Read(const PixelWindow& window, std::vector<Pixel>& pixels) override {
    const std::vector<SourcePixel>& index = m_index.Of(window);
    const PixelWindow box = BoxAround(index);
    ReadBox(box);
    pixels.resize(index.size());
    for (std::size_t i = 0; i < index.size(); ++i) {
      const SourcePixel& each = index[i];
      pixels[i] = each.IsOutside()
                      ? m_outside
                      : m_box[static_cast<std::size_t>((each.row - box.y) * box.width + each.column - box.x)];
    }
  }

 private:
  void Transform(std::vector<double>& xs, std::vector<double>& ys) {
    m_heights.assign(xs.size(), 0.0);
    m_found.assign(xs.size(), FALSE);
    GDALGenImgProjTransform(m_transformer.get(), TRUE, static_cast<int>(xs.size()), xs.data(), ys.data(),
                            m_heights.data(), m_found.data());
    for (std::size_t i = 0; i < xs.size(); ++i) {
      if (m_found[i] == FALSE) xs[i] = ys[i] = std::numeric_limits<double>::quiet_NaN();
    }
  }

  void ReadBox(const PixelWindow& box) {
    if (box.width == 0) return;
    m_errors.Forget();
    m_box.assign(static_cast<std::size_t>(box.width) * static_cast<std::size_t>(box.height), {0, 0, 0, 255});
    const CPLErr result = ReadSource(box);
    m_errors.Check(kNotRead);
    if (result != CE_None) throw TilerError(kNotRead);
    if (m_colours == 1) {
      for (Pixel& pixel : m_box) pixel.green = pixel.blue = pixel.red;
    }
    Hide(m_hidden, m_box);
  }

  CPLErr ReadSource(const PixelWindow& box) {
    const std::lock_guard lock(m_source->mutex);
    const int bands = m_colours + (m_hasAlpha ? 1 : 0);
    constexpr GSpacing kFromRedToAlpha = 3;
    return m_source->dataset->RasterIO(GF_Read, static_cast<int>(box.x), static_cast<int>(box.y), box.width,
                                       box.height, &m_box.front().red, box.width, box.height, GDT_Byte, bands,
                                       nullptr, kPixelBytes, GSpacing{kPixelBytes} * box.width,
                                       bands == 2 ? kFromRedToAlpha : 1, nullptr);
  }

  int m_colours;
  bool m_hasAlpha;
  std::vector<int> m_hidden;
  GdalErrors m_errors;
  std::shared_ptr<SharedImage> m_source;
  Transformer m_transformer;
  WarpIndex m_index;
  Pixel m_outside;
  std::vector<Pixel> m_box;
  std::vector<double> m_heights;
  std::vector<int> m_found;
};

}  // namespace

std::unique_ptr<WindowReader> MakeDirectReader(const MapView& view, RunLog& log) {
  return std::make_unique<DirectReader>(view, log);
}

}  // namespace tiler
