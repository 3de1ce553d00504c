#include "tiler/shown_bands.h"

#include <gdal_priv.h>

#include <algorithm>

#include "tiler/tiler_error.h"

namespace tiler {

namespace {

constexpr int kMostBands = 4;

// Red, green and blue; empty unless each of them is marked.
std::vector<int> MarkedColours(GDALDataset& image) {
  std::vector<int> colours;
  for (const GDALColorInterp wanted : {GCI_RedBand, GCI_GreenBand, GCI_BlueBand}) {
    for (GDALRasterBand* band : image.GetBands()) {
      if (band->GetColorInterpretation() != wanted) continue;
      colours.push_back(band->GetBand());
      break;
    }
  }
  if (colours.size() != 3) colours.clear();
  return colours;
}

}  // namespace

std::vector<int> ShownBands::All() const {
  std::vector<int> all = colours;
  all.insert(all.end(), alpha.begin(), alpha.end());
  return all;
}

bool HoldsColours(GDALDataset& image) {
  if (image.GetRasterCount() > kMostBands) return false;
  for (GDALRasterBand* band : image.GetBands()) {
    if (band->GetRasterDataType() != GDT_Byte || band->GetColorTable() != nullptr) return false;
  }
  return true;
}

bool HasNodata(GDALDataset& image) {
  for (GDALRasterBand* band : image.GetBands()) {
    int has = FALSE;
    band->GetNoDataValue(&has);
    if (has != FALSE) return true;
  }
  return false;
}

bool HasTransparency(GDALDataset& image) {
  const int flags = image.GetRasterBand(1)->GetMaskFlags();
  if ((flags & GMF_PER_DATASET) != 0 && (flags & GMF_NODATA) == 0) return true;
  for (GDALRasterBand* band : image.GetBands()) {
    if (band->GetColorInterpretation() == GCI_AlphaBand) return true;
  }
  return false;
}

ShownBands ShownBandsOf(GDALDataset& image) {
  ShownBands shown;
  for (GDALRasterBand* band : image.GetBands()) {
    const bool isAlpha = band->GetColorInterpretation() == GCI_AlphaBand;
    (isAlpha ? shown.alpha : shown.colours).push_back(band->GetBand());
  }
  if (shown.colours.empty()) throw TilerError("the image has no colour band");
  shown.colours.resize(shown.colours.size() >= 3 ? 3 : 1);
  shown.alpha.resize(std::min<std::size_t>(1, shown.alpha.size()));
  const std::vector<int> marked = HoldsColours(image) ? std::vector<int>() : MarkedColours(image);
  if (!marked.empty()) shown.colours = marked;
  return shown;
}

}  // namespace tiler
