#include "tiler/map_positions.h"

#include <cpl_string.h>
#include <ogr_spatialref.h>

#include <limits>

#include "tiler/map_srs.h"
#include "tiler/tiler_error.h"

namespace tiler {

MapPositions::MapPositions(SharedImage& image, const std::string& srs, std::array<double, 6> place) {
  CPLStringList options;
  options.SetNameValue("SRC_SRS", srs.c_str());
  options.SetNameValue("DST_SRS", WktOf(MapSrs()).c_str());
  const std::lock_guard lock(image.mutex);
  m_transformer.reset(
      GDALCreateGenImgProjTransformer2(GDALDataset::ToHandle(image.dataset.get()), nullptr, options.List()));
  if (!m_transformer) throw TilerError(kNotRead);
  GDALSetGenImgProjTransformerDstGeoTransform(m_transformer.get(), place.data());
}

void MapPositions::Ask(std::vector<double>& xs, std::vector<double>& ys) {
  m_heights.assign(xs.size(), 0.0);
  m_found.assign(xs.size(), FALSE);
  GDALGenImgProjTransform(m_transformer.get(), TRUE, static_cast<int>(xs.size()), xs.data(), ys.data(),
                          m_heights.data(), m_found.data());
  for (std::size_t i = 0; i < xs.size(); ++i) {
    if (m_found[i] == FALSE) xs[i] = ys[i] = std::numeric_limits<double>::quiet_NaN();
  }
}

}  // namespace tiler
