#include "tiler/warp_options.h"

#include <string_view>

#include "tiler/virtual_document.h"

namespace tiler {

namespace {

constexpr const char* kInitialValue = "INIT_DEST";
constexpr const char* kSource = "SourceDataset";

CPLXMLNode* MakeOption(const char* name, const std::string& value) {
  CPLXMLNode* option = CPLCreateXMLElementAndValue(nullptr, "Option", value.c_str());
  CPLAddXMLAttributeAndValue(option, "name", name);
  return option;
}

void Prepend(CPLXMLNode* parent, CPLXMLNode* child) {
  child->psNext = parent->psChild;
  parent->psChild = child;
}

void RemoveOptions(CPLXMLNode* parent, std::string_view name) {
  CPLXMLNode* next = nullptr;
  for (CPLXMLNode* child = parent->psChild; child != nullptr; child = next) {
    next = child->psNext;
    if (child->eType == CXT_Element && std::string_view(child->pszValue) == "Option" &&
        CPLGetXMLValue(child, "name", "") == name) {
      CPLRemoveXMLChild(parent, child);
      CPLDestroyXMLNode(child);
    }
  }
}

CPLXMLNode* MakeAlphaBand(const std::string& number) {
  CPLXMLNode* band = CPLCreateXMLNode(nullptr, CXT_Element, "VRTRasterBand");
  CPLAddXMLAttributeAndValue(band, "dataType", "Byte");
  CPLAddXMLAttributeAndValue(band, "band", number.c_str());
  CPLAddXMLAttributeAndValue(band, "subClass", "VRTWarpedRasterBand");
  CPLCreateXMLElementAndValue(band, "ColorInterp", "Alpha");
  return band;
}

CPLXMLNode* LastBand(CPLXMLNode* root) {
  CPLXMLNode* last = nullptr;
  for (CPLXMLNode* child : ElementsOf(root)) {
    if (std::string_view(child->pszValue) == "VRTRasterBand") last = child;
  }
  return last;
}

}  // namespace

std::string WithNodata(const std::string& xml, const std::vector<int>& transparent) {
  const VirtualDocument document(xml);
  CPLXMLNode* options = document.WarpOptions();
  if (options == nullptr) return xml;
  std::string fill = "NO_DATA";
  if (!transparent.empty()) {
    // The one that is there already says 0 and would count: an opaque black collar around an image whose
    // transparent colour is another.
    RemoveOptions(options, kInitialValue);
    fill.clear();
    for (const int value : transparent) fill += (fill.empty() ? "" : ",") + std::to_string(value);
  }
  Prepend(options, MakeOption(kInitialValue, fill));
  Prepend(options, MakeOption("UNIFIED_SRC_NODATA", "YES"));
  return document.Text();
}

std::string WithAlphaBand(const std::string& xml, int bands) {
  const VirtualDocument document(xml);
  CPLXMLNode* options = document.WarpOptions();
  CPLXMLNode* last = LastBand(document.Root());
  if (options == nullptr || last == nullptr) return xml;
  const std::string number = std::to_string(bands + 1);
  CPLXMLNode* alpha = MakeAlphaBand(number);
  alpha->psNext = last->psNext;
  last->psNext = alpha;
  CPLCreateXMLElementAndValue(options, "DstAlphaBand", number.c_str());
  CPLAddXMLChild(options, MakeOption(kInitialValue, "0"));
  return document.Text();
}

std::optional<WarpSource> WithAbsoluteSource(const std::string& xml, const std::string& folder) {
  const VirtualDocument document(xml);
  CPLXMLNode* options = document.WarpOptions();
  CPLXMLNode* source = options == nullptr ? nullptr : CPLGetXMLNode(options, kSource);
  if (source == nullptr) return std::nullopt;
  const std::string path = PathIn(source, folder);
  CPLSetXMLValue(options, kSource, path.c_str());
  CPLSetXMLValue(options, "SourceDataset.#relativeToVRT", "0");
  return WarpSource{path, document.Text()};
}

}  // namespace tiler
