#include "tiler/source_image.h"

#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal_utils.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>

#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/image_files.h"
#include "tiler/map_limits.h"
#include "tiler/map_srs.h"
#include "tiler/number_text.h"
#include "tiler/path_text.h"
#include "tiler/run_log.h"
#include "tiler/tiler_error.h"

namespace tiler {

namespace {

GDALDatasetUniquePtr Open(const std::string& path, const GdalErrors& errors) {
  if (!std::filesystem::is_regular_file(PathOf(path))) {
    throw TilerError("the image " + path + " does not exist");
  }
  return OpenImage(path, errors, "the image " + path + " could not be opened");
}

void CheckPixels(GDALDataset& dataset) {
  const int count = dataset.GetRasterCount();
  if (count < 1 || count > 4) {
    throw TilerError("the image has " + std::to_string(count) +
                     " bands; only 1 to 4 bands of 8 bits can be tiled");
  }
  for (GDALRasterBand* band : dataset.GetBands()) {
    if (band->GetColorTable() != nullptr) {
      throw TilerError("the image has a colour palette; convert it to RGB before tiling");
    }
    const GDALDataType type = band->GetRasterDataType();
    if (type != GDT_Byte) {
      throw TilerError("the image has " + std::to_string(GDALGetDataTypeSize(type)) + "-bit pixels (" +
                       GDALGetDataTypeName(type) + "); convert it to 8 bits before tiling");
    }
  }
}

OGRSpatialReference SrsOf(GDALDataset& dataset, const std::string& wanted) {
  std::string text = wanted;
  if (text.empty()) text = dataset.GetProjectionRef();
  if (text.empty()) text = dataset.GetGCPProjection();
  if (text.empty()) throw TilerError("the image does not say its coordinate system");
  OGRSpatialReference srs;
  if (srs.SetFromUserInput(text.c_str()) != OGRERR_NONE) {
    throw TilerError("the coordinate system " + (wanted.empty() ? "of the image" : wanted) + " is not known");
  }
  return srs;
}

void CheckGeoreference(GDALDataset& dataset) {
  constexpr std::array<double, 6> kNone = {0, 1, 0, 0, 0, 1};
  std::array<double, 6> transform = kNone;
  dataset.GetGeoTransform(transform.data());
  if (dataset.GetGCPCount() == 0 && transform == kNone) {
    throw TilerError("the image has no georeference (neither position and pixel size nor control points)");
  }
}

// Reads the last pixel: an incomplete file opens well, but its end is missing.
void CheckReadable(const std::string& path, GDALDataset& dataset, GdalErrors& errors) {
  for (GDALRasterBand* band : dataset.GetBands()) {
    std::uint8_t pixel = 0;
    const CPLErr result = band->RasterIO(GF_Read, band->GetXSize() - 1, band->GetYSize() - 1, 1, 1, &pixel, 1,
                                         1, GDT_Byte, 0, 0, nullptr);
    errors.Check("the image " + path + " is incomplete or damaged");
    if (result != CE_None) throw TilerError("the image " + path + " is incomplete or damaged");
  }
}

// Whether a mask stands beside the bands (one that nodata values make does not count).
bool HasMask(GDALDataset& dataset) {
  const int flags = dataset.GetRasterBand(1)->GetMaskFlags();
  return (flags & GMF_PER_DATASET) != 0 && (flags & GMF_NODATA) == 0;
}

bool HasNodata(GDALDataset& dataset) {
  for (GDALRasterBand* band : dataset.GetBands()) {
    int has = FALSE;
    band->GetNoDataValue(&has);
    if (has != FALSE) return true;
  }
  return false;
}

// Numbers of the bands to show, from 1 on.
struct ShownBands {
  std::vector<int> colours;  // 1 or 3
  std::vector<int> alpha;    // 0 or 1

  std::vector<int> All() const {
    std::vector<int> all = colours;
    all.insert(all.end(), alpha.begin(), alpha.end());
    return all;
  }
};

ShownBands ShownBandsOf(GDALDataset& dataset) {
  ShownBands shown;
  for (GDALRasterBand* band : dataset.GetBands()) {
    const bool isAlpha = band->GetColorInterpretation() == GCI_AlphaBand;
    (isAlpha ? shown.alpha : shown.colours).push_back(band->GetBand());
  }
  if (shown.colours.empty()) throw TilerError("the image has no colour band");
  shown.colours.resize(shown.colours.size() >= 3 ? 3 : 1);
  shown.alpha.resize(std::min<std::size_t>(1, shown.alpha.size()));
  return shown;
}

// Makes a virtual raster of these bands and leaves it in GDAL's memory; its name there.
std::string MakeVirtual(GDALDataset& dataset, const std::vector<int>& bands, const std::string& metadata,
                        GdalErrors& errors) {
  static std::atomic<int> count = 0;
  std::string name = "/vsimem/mosaicon_input_" + std::to_string(++count) + ".vrt";
  CPLStringList words;
  words.AddString("-of").AddString("VRT");
  for (const int band : bands) words.AddString("-b").AddString(std::to_string(band).c_str());
  words.AddString("-a_nodata").AddString("none");
  if (!metadata.empty()) words.AddString("-mo").AddString(metadata.c_str());
  GDALTranslateOptions* options = GDALTranslateOptionsNew(words.List(), nullptr);
  int misused = FALSE;
  const GDALDatasetUniquePtr made(GDALDataset::FromHandle(
      GDALTranslate(name.c_str(), GDALDataset::ToHandle(&dataset), options, &misused)));
  GDALTranslateOptionsFree(options);
  errors.Check(kNotRead);
  if (!made) throw TilerError(kNotRead);
  return name;
}

}  // namespace

SourceImage::SourceImage(const Request& request, RunLog& log) : m_name(request.input), m_srs(request.srs) {
  GdalErrors errors(log);
  const GDALDatasetUniquePtr dataset = Open(request.input, errors);
  CheckPixels(*dataset);
  const OGRSpatialReference srs = SrsOf(*dataset, request.srs);
  errors.Forget();
  CheckGeoreference(*dataset);
  CheckReadable(request.input, *dataset, errors);
  CheckExtent(*dataset, srs);
  m_state = StateOf(*dataset);
  m_layout = LayoutOf(*dataset);
  m_isComputed = IsVirtual(*dataset);
  errors.Forget();

  const ShownBands shown = ShownBandsOf(*dataset);
  const std::vector<int> bands = shown.All();
  const bool isTransparent = !shown.alpha.empty() || HasMask(*dataset);
  if (request.transparent && isTransparent) {
    log.Line("The image has its own transparency; the transparent colour is not used.");
  } else if (request.transparent) {
    // Component i of the colour belongs to band i: red to the first, which is also the only one of a grey
    // image.
    m_transparent.assign(request.transparent->begin(), request.transparent->end());
    m_transparent.resize(shown.colours.size());
  }
  std::vector<int> all;
  for (GDALRasterBand* band : dataset->GetBands()) all.push_back(band->GetBand());
  if (bands.size() != all.size()) {
    log.Line("Of the image's bands only [" + Joined(bands, ", ") + "] can be shown.");
  }
  std::string metadata;
  if (!m_transparent.empty() && IsInMapSrs(*dataset, srs)) {
    metadata = "NODATA_VALUES=" + Joined(m_transparent, " ");
  }
  if (bands != all || (isTransparent && HasNodata(*dataset)) || !metadata.empty()) {
    m_virtual = MakeVirtual(*dataset, bands, metadata, errors);
    m_name = m_virtual;
  }
}

SourceImage::~SourceImage() {
  if (!m_virtual.empty()) VSIUnlink(m_virtual.c_str());
}

}  // namespace tiler
