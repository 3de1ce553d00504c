#include "tiler/colour_image.h"

#include <cpl_string.h>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/number_text.h"
#include "tiler/run_log.h"
#include "tiler/tiler_error.h"
#include "tiler/value_range.h"
#include "tiler/virtual_raster.h"

namespace tiler {

namespace {

constexpr int kAlphaOfEntry = 4;

bool AreBytes(GDALDataset& image, const ShownBands& shown) {
  return std::ranges::all_of(
      shown.colours, [&](int band) { return image.GetRasterBand(band)->GetRasterDataType() == GDT_Byte; });
}

// Its palette; null when it is shown as it is.
const GDALColorTable* PaletteOf(GDALDataset& image, const ShownBands& shown) {
  return shown.colours.size() == 1 ? image.GetRasterBand(shown.colours.front())->GetColorTable() : nullptr;
}

bool HasTransparentEntries(const GDALColorTable& palette) {
  for (int i = 0; i < palette.GetColorEntryCount(); ++i) {
    if (palette.GetColorEntry(i)->c4 != 255) return true;
  }
  return false;
}

bool AreOfOneType(GDALDataset& image, const std::vector<int>& bands) {
  const GDALDataType type = image.GetRasterBand(bands.front())->GetRasterDataType();
  return std::ranges::all_of(
      bands, [&](int band) { return image.GetRasterBand(band)->GetRasterDataType() == type; });
}

// What the colour bands call no data, one value for each; empty unless all do.
std::vector<double> NodataOf(GDALDataset& image, const std::vector<int>& bands) {
  std::vector<double> values;
  for (const int band : bands) {
    int has = FALSE;
    const double value = image.GetRasterBand(band)->GetNoDataValue(&has);
    if (has != FALSE) values.push_back(value);
  }
  if (values.size() != bands.size()) values.clear();
  return values;
}

// The value that a channel of a colour has in the file before it is stretched.
std::optional<double> ValueOf(std::uint8_t channel, GDALDataType type) {
  if (channel == 0) return 0;
  if (channel != 255) return std::nullopt;
  switch (type) {
    case GDT_UInt16:
      return std::numeric_limits<std::uint16_t>::max();
    case GDT_Int16:
      return std::numeric_limits<std::int16_t>::max();
    case GDT_UInt32:
      return std::numeric_limits<std::uint32_t>::max();
    case GDT_Int32:
      return std::numeric_limits<std::int32_t>::max();
    default:
      return std::nullopt;
  }
}

std::vector<double> ValuesOf(const Colour& colour, GDALDataset& image, const std::vector<int>& bands) {
  std::vector<double> values;
  for (std::size_t i = 0; i < bands.size(); ++i) {
    const auto value = ValueOf(colour[i], image.GetRasterBand(bands[i])->GetRasterDataType());
    if (value) values.push_back(*value);
  }
  if (values.size() != bands.size()) values.clear();
  return values;
}

std::string Exact(double value) {
  return CPLSPrintf("%.17g", value);
}

// The shown bands as they are; what is transparent is what their mask hides.
MemoryFile BandsOf(GDALDataset& image, const ShownBands& shown, const std::vector<double>& nodata,
                   GdalErrors& errors) {
  const std::vector<int> bands = shown.All();
  // Values that are no number belong to no range, whatever the file says.
  constexpr const char* kNotANumber = "nan";
  const bool isReal =
      GDALDataTypeIsFloating(image.GetRasterBand(bands.front())->GetRasterDataType()) != FALSE;
  if (nodata.empty()) return MakeVirtual(image, bands, isReal ? kNotANumber : "none", "", errors);
  if (std::isnan(nodata.front())) return MakeVirtual(image, bands, kNotANumber, "", errors);
  if (!AreOfOneType(image, bands)) return MakeVirtual(image, bands, Exact(nodata.front()), "", errors);
  // Of several bands a pixel is hidden that has the value in all of them.
  std::string all = "NODATA_VALUES=";
  for (const double value : nodata) all += (all.back() == '=' ? "" : " ") + Exact(value);
  return MakeVirtual(image, bands, "none", all, errors);
}

// The values that are hidden, one for each colour band; empty: none, or the image has other transparency.
std::vector<double> HiddenValues(GDALDataset& image, const ShownBands& shown, How how,
                                 const std::optional<Colour>& transparent) {
  if (HasTransparency(image)) return {};
  std::vector<double> nodata = NodataOf(image, shown.colours);
  if (!nodata.empty() || how != How::kStretched || !transparent) return nodata;
  return ValuesOf(*transparent, image, shown.colours);
}

// band: a number, or "mask," and one. change: elements that say what becomes of a value.
std::string SourceOf(const MemoryFile& file, const std::string& band, const std::string& change) {
  const std::string kind = change.empty() ? "SimpleSource" : "ComplexSource";
  return "<" + kind + "><SourceFilename relativeToVRT=\"0\">" + file.Name() +
         "</SourceFilename><SourceBand>" + band + "</SourceBand>" + change + "</" + kind + ">";
}

void AddBand(GDALDataset& image, GDALColorInterp meaning, const std::string& source) {
  image.AddBand(GDT_Byte, nullptr);
  GDALRasterBand* band = image.GetRasterBand(image.GetRasterCount());
  band->SetColorInterpretation(meaning);
  band->SetMetadataItem("source_0", source.c_str(), "new_vrt_sources");
}

void AddColours(GDALDataset& image, const std::vector<std::string>& sources) {
  constexpr std::array kColours = {GCI_RedBand, GCI_GreenBand, GCI_BlueBand};
  for (std::size_t i = 0; i < sources.size(); ++i) {
    AddBand(image, sources.size() == 1 ? GCI_GrayIndex : kColours[i], sources[i]);
  }
}

// part: 1 (red) to 4 (transparency)
std::string EntryPart(int part) {
  return "<ColorTableComponent>" + std::to_string(part) + "</ColorTableComponent>";
}

// What makes colours of the values of the first bands.
std::string Stretch(GDALDataset& bands, std::size_t colours, RunLog& log, GdalErrors& errors) {
  const ValueRange range = ShownRangeOf(bands, static_cast<int>(colours), errors);
  log.Line("Values from " + ShortestText(range.black) + " to " + ShortestText(range.white) +
           " are shown from black to white.");
  const double ratio = 255 / (range.white - range.black);
  return "<ScaleOffset>" + Exact(-range.black * ratio) + "</ScaleOffset><ScaleRatio>" + Exact(ratio) +
         "</ScaleRatio>";
}

std::vector<std::string> PaletteSources(const MemoryFile& file) {
  std::vector<std::string> sources;
  for (const int part : {1, 2, 3}) sources.push_back(SourceOf(file, "1", EntryPart(part)));
  return sources;
}

std::vector<std::string> BandSources(const MemoryFile& file, std::size_t count, const std::string& change) {
  std::vector<std::string> sources;
  for (std::size_t i = 1; i <= count; ++i) sources.push_back(SourceOf(file, std::to_string(i), change));
  return sources;
}

MemoryFile Written(GDALDataset& like, const std::vector<std::string>& colours, const std::string& alpha) {
  MemoryFile file(".vrt");
  const GDALDatasetUniquePtr image = MakeEmptyVirtual(like, file.Name());
  AddColours(*image, colours);
  if (!alpha.empty()) AddBand(*image, GCI_AlphaBand, alpha);
  image->FlushCache(true);
  return file;
}

}  // namespace

How HowToShow(GDALDataset& image, const ShownBands& shown) {
  if (PaletteOf(image, shown) != nullptr) return How::kByPalette;
  return AreBytes(image, shown) ? How::kAsItIs : How::kStretched;
}

ColourImage MakeColourImage(GDALDataset& image, const ShownBands& shown,
                            const std::optional<Colour>& transparent, RunLog& log, GdalErrors& errors) {
  const How how = HowToShow(image, shown);
  ColourImage made;
  made.files.push_back(BandsOf(image, shown, HiddenValues(image, shown, how, transparent), errors));
  const MemoryFile& file = made.files.front();
  const GDALDatasetUniquePtr bands = OpenImage(file.Name(), errors, kNotRead);
  if (how != How::kStretched) made.transparent = transparent;
  std::string alpha;
  if (bands->GetRasterBand(1)->GetMaskFlags() != GMF_ALL_VALID) alpha = SourceOf(file, "mask,1", "");
  std::vector<std::string> colours;
  if (how == How::kByPalette) {
    log.Line("The colours of the palette are shown.");
    colours = PaletteSources(file);
    if (alpha.empty() && HasTransparentEntries(*PaletteOf(image, shown))) {
      alpha = SourceOf(file, "1", EntryPart(kAlphaOfEntry));
      made.transparent.reset();
    }
  } else {
    const std::size_t count = shown.colours.size();
    const std::string change = how == How::kStretched ? Stretch(*bands, count, log, errors) : "";
    colours = BandSources(file, count, change);
  }
  made.colours = colours.size();
  made.files.push_back(Written(*bands, colours, alpha));
  errors.Check(kNotRead);
  return made;
}

}  // namespace tiler
