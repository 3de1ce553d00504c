#include "tiler/source_image.h"

#include <ogr_spatialref.h>

#include <array>
#include <filesystem>
#include <utility>

#include "files/path_text.h"
#include "tiler/colour_image.h"
#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/image_files.h"
#include "tiler/map_limits.h"
#include "tiler/map_srs.h"
#include "tiler/number_text.h"
#include "tiler/run_log.h"
#include "tiler/shown_bands.h"
#include "tiler/tiler_error.h"
#include "tiler/virtual_raster.h"
#include "tiler/warped_input.h"

namespace tiler {

namespace {

GDALDatasetUniquePtr Open(const std::string& path, const GdalErrors& errors) {
  if (!std::filesystem::is_regular_file(files::PathOf(path))) {
    throw TilerError("the image " + path + " does not exist");
  }
  return OpenImage(path, errors, "the image " + path + " could not be opened");
}

void CheckPixels(GDALDataset& dataset) {
  if (dataset.GetRasterCount() < 1) throw TilerError("the image has no bands");
  for (GDALRasterBand* band : dataset.GetBands()) {
    const GDALDataType type = band->GetRasterDataType();
    if (GDALDataTypeIsComplex(type) != FALSE) {
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

// Whether what gdalwarp leaves outside of the image, where all values are 0, is hidden without more ado: see
// MakeColourImage.
bool IsOutsideHidden(GDALDataset& dataset, const Request& request) {
  return request.transparent == Colour{0, 0, 0} &&
         HowToShow(dataset, ShownBandsOf(dataset)) == How::kStretched;
}

std::vector<int> AllBandsOf(GDALDataset& dataset) {
  std::vector<int> all;
  for (GDALRasterBand* band : dataset.GetBands()) all.push_back(band->GetBand());
  return all;
}

}  // namespace

SourceImage::SourceImage(const Request& request, RunLog& log) : m_name(request.input), m_srs(request.srs) {
  GdalErrors errors(log);
  GDALDatasetUniquePtr dataset = Open(request.input, errors);
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

  const std::optional<WarpedInput> warped = WithTransparency(*dataset, request.input, errors);
  const bool isWithTransparency = warped && (warped->hasMask || !IsOutsideHidden(*dataset, request));
  if (isWithTransparency) {
    const MemoryFile& file = m_virtual.emplace_back(".vrt");
    file.Write(warped->xml);
    m_name = file.Name();
    dataset = OpenImage(m_name, errors, kNotRead);
  }
  const bool isTransparent = isWithTransparency ? warped->hasMask : HasTransparency(*dataset);
  std::optional<Colour> transparent = request.transparent;
  if (transparent && isTransparent) {
    log.Line("The image has its own transparency; the transparent colour is not used.");
    transparent.reset();
  }
  if (HoldsColours(*dataset)) {
    ChooseBands(*dataset, isTransparent, transparent, IsInMapSrs(*dataset, srs), log, errors);
  } else {
    MakeColours(*dataset, transparent, log, errors);
  }
  for (const MemoryFile& file : m_virtual) m_state += file.Text();
}

void SourceImage::ChooseBands(GDALDataset& image, bool isTransparent,
                              const std::optional<Colour>& transparent, bool isInMapSrs, RunLog& log,
                              GdalErrors& errors) {
  const ShownBands shown = ShownBandsOf(image);
  const std::vector<int> bands = shown.All();
  if (transparent) SetTransparent(*transparent, shown.colours.size());
  const std::vector<int> all = AllBandsOf(image);
  if (bands.size() != all.size()) {
    log.Line("Of the image's bands only [" + Joined(bands, ", ") + "] can be shown.");
  }
  std::string metadata;
  if (transparent && isInMapSrs && shown.alpha.empty()) {
    metadata = "NODATA_VALUES=" + Joined(m_transparent, " ");
  }
  if (bands != all || (isTransparent && HasNodata(image)) || !metadata.empty()) {
    m_virtual.push_back(MakeVirtual(image, bands, "none", metadata, errors));
    m_name = m_virtual.back().Name();
  }
}

void SourceImage::MakeColours(GDALDataset& image, const std::optional<Colour>& transparent, RunLog& log,
                              GdalErrors& errors) {
  const ShownBands shown = ShownBandsOf(image);
  if (shown.All() != AllBandsOf(image)) {
    log.Line("Of the image's bands [" + Joined(shown.All(), ", ") + "] are shown.");
  }
  ColourImage made = MakeColourImage(image, shown, transparent, log, errors);
  if (made.transparent) SetTransparent(*made.transparent, made.colours);
  for (MemoryFile& file : made.files) m_virtual.push_back(std::move(file));
  m_name = m_virtual.back().Name();
  m_isComputed = true;
}

// Component i of the colour belongs to band i: red to the first, which is also the only one of a grey image.
void SourceImage::SetTransparent(const Colour& colour, std::size_t colours) {
  m_transparent.assign(colour.begin(), colour.end());
  m_transparent.resize(colours);
}

}  // namespace tiler
