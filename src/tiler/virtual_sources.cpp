#include "tiler/virtual_sources.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <set>
#include <string_view>

#include "tiler/virtual_document.h"

namespace tiler {

namespace {

using Names = std::set<std::string_view>;

// What says how a warp is done, or where it goes, and nothing of its pixels.
const Names kHarmlessOptions = {"INIT_DEST", "ERROR_OUT_IF_EMPTY_SOURCE_WINDOW", "UNIFIED_SRC_NODATA",
                                "NUM_THREADS"};
// Positions by a place and a size, or by control points, and a change of the coordinate system; nothing else.
const Names kPlainTransformers = {"ApproxTransformer",
                                  "MaxError",
                                  "BaseTransformer",
                                  "GenImgProjTransformer",
                                  "SrcGeoTransform",
                                  "SrcInvGeoTransform",
                                  "SrcGCPTransformer",
                                  "GCPTransformer",
                                  "Order",
                                  "Reversed",
                                  "GCPList",
                                  "GCP",
                                  "DstGeoTransform",
                                  "DstInvGeoTransform",
                                  "ReprojectTransformer",
                                  "ReprojectionTransformer",
                                  "SourceSRS",
                                  "TargetSRS"};

std::string_view NameOf(const CPLXMLNode* node) {
  return node->pszValue;
}

std::string_view ValueOf(CPLXMLNode* node, const char* path = "") {
  return CPLGetXMLValue(node, path, "");
}

bool HasOnly(CPLXMLNode* node, const Names& names) {
  const std::vector<CPLXMLNode*> elements = ElementsOf(node);
  return std::all_of(elements.begin(), elements.end(), [&names](CPLXMLNode* each) {
    return names.contains(NameOf(each)) && HasOnly(each, names);
  });
}

// As many as GDAL gives to so many control points when nobody tells it.
bool IsOfUsualOrder(CPLXMLNode* transformer) {
  CPLXMLNode* points = CPLSearchXMLNode(transformer, "GCPTransformer");
  if (points == nullptr) return true;
  const std::size_t count = ElementsOf(CPLGetXMLNode(points, "GCPList")).size();
  return ValueOf(points, "Order") == (count >= 6 ? "2" : "1");
}

bool IsPlain(CPLXMLNode* transformer) {
  return HasOnly(transformer, kPlainTransformers) && IsOfUsualOrder(transformer);
}

bool IsNumber(std::string_view text, std::size_t number) {
  return text == std::to_string(number);
}

// Fills the warp's values of no data.
bool TakeBands(CPLXMLNode* list, PlainWarp& warp) {
  static const Names kOfBand = {"SrcNoDataReal", "SrcNoDataImag", "DstNoDataReal", "DstNoDataImag"};
  for (CPLXMLNode* band : ElementsOf(list)) {
    const std::size_t number = warp.nodata.size() + 1;
    const bool isSame = NameOf(band) == "BandMapping" && IsNumber(ValueOf(band, "src"), number) &&
                        IsNumber(ValueOf(band, "dst"), number) && HasOnly(band, kOfBand);
    if (!isSame) return false;
    CPLXMLNode* nodata = CPLGetXMLNode(band, "SrcNoDataReal");
    warp.nodata.push_back(nodata == nullptr ? std::numeric_limits<double>::quiet_NaN()
                                            : std::atof(std::string(ValueOf(nodata)).c_str()));
  }
  return !warp.nodata.empty();
}

bool IsWholeOf(CPLXMLNode* rectangle, int width, int height) {
  const auto is = [rectangle](const char* name, int number) {
    return std::atof(std::string(ValueOf(rectangle, name)).c_str()) == number;
  };
  return rectangle != nullptr && is("xOff", 0) && is("yOff", 0) && is("xSize", width) && is("ySize", height);
}

// The node that names the image of a band which is shown as it is; null for any other band.
CPLXMLNode* SourceOfBand(CPLXMLNode* band, int width, int height) {
  static const Names kOfSource = {"SourceFilename", "SourceBand", "SourceProperties", "SrcRect", "DstRect"};
  CPLXMLNode* source = nullptr;
  for (CPLXMLNode* each : ElementsOf(band)) {
    const std::string_view name = NameOf(each);
    if (name == "UseMaskBand" || name == "SourceTransferType" || name == "PixelFunctionType") return nullptr;
    if (!name.ends_with("Source")) continue;
    if (name != "SimpleSource" || source != nullptr || !HasOnly(each, kOfSource)) return nullptr;
    source = each;
  }
  const bool isWhole = source != nullptr && IsWholeOf(CPLGetXMLNode(source, "SrcRect"), width, height) &&
                       IsWholeOf(CPLGetXMLNode(source, "DstRect"), width, height) &&
                       ValueOf(source, "SourceBand") == ValueOf(band, "band");
  return isWhole ? CPLGetXMLNode(source, "SourceFilename") : nullptr;
}

}  // namespace

std::optional<PlainWarp> PlainlyWarped(const std::string& xml, const std::string& folder) {
  const VirtualDocument document(xml);
  PlainWarp warp;
  std::string_view sourceAlpha;
  std::string_view targetAlpha;
  for (CPLXMLNode* each : ElementsOf(document.WarpOptions())) {
    const std::string_view name = NameOf(each);
    if (name == "SourceDataset") {
      warp.path = PathIn(each, folder);
    } else if (name == "ResampleAlg") {
      if (ValueOf(each) != "NearestNeighbour") return std::nullopt;
    } else if (name == "Option") {
      if (!kHarmlessOptions.contains(ValueOf(each, "name"))) return std::nullopt;
    } else if (name == "Transformer") {
      if (!IsPlain(each)) return std::nullopt;
      CPLXMLNode* srs = CPLSearchXMLNode(each, "SourceSRS");
      if (srs != nullptr) warp.srs = ValueOf(srs);
    } else if (name == "BandList") {
      if (!TakeBands(each, warp)) return std::nullopt;
    } else if (name == "SrcAlphaBand") {
      sourceAlpha = ValueOf(each);
    } else if (name == "DstAlphaBand") {
      targetAlpha = ValueOf(each);
    } else if (name != "WarpMemoryLimit" && name != "WorkingDataType") {
      return std::nullopt;
    }
  }
  const bool isSame =
      sourceAlpha == targetAlpha && (sourceAlpha.empty() || IsNumber(sourceAlpha, warp.nodata.size() + 1));
  if (warp.path.empty() || warp.nodata.empty() || !isSame) return std::nullopt;
  return warp;
}

std::string PlainlyShown(const std::string& xml, const std::string& folder, int width, int height) {
  const VirtualDocument document(xml);
  if (document.WarpOptions() != nullptr) return "";
  std::string path;
  int bands = 0;
  for (CPLXMLNode* each : ElementsOf(document.Root())) {
    if (NameOf(each) != "VRTRasterBand") continue;
    CPLXMLNode* source = SourceOfBand(each, width, height);
    if (source == nullptr || ValueOf(each, "band") != std::to_string(++bands)) return "";
    const std::string of = PathIn(source, folder);
    if (!path.empty() && of != path) return "";
    path = of;
  }
  return path;
}

}  // namespace tiler
