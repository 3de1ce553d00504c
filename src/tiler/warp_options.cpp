#include "tiler/warp_options.h"

#include <cpl_conv.h>
#include <cpl_minixml.h>

#include <string_view>

#include "tiler/tiler_error.h"

namespace tiler {

namespace {

constexpr const char* kWarpOptions = "GDALWarpOptions";
constexpr const char* kInitialValue = "INIT_DEST";
constexpr const char* kSource = "SourceDataset";

class Document {
 public:
  explicit Document(const std::string& xml) : m_tree(CPLParseXMLString(xml.c_str())) {
    m_root = m_tree ? CPLGetXMLNode(m_tree.get(), "=VRTDataset") : nullptr;
    if (m_root == nullptr) throw TilerError(std::string(kNotRead) + ": no virtual raster was made");
  }

  CPLXMLNode* Root() const { return m_root; }
  // Null where the image is not warped.
  CPLXMLNode* WarpOptions() const { return CPLGetXMLNode(m_root, kWarpOptions); }

  std::string Text() const {
    char* text = CPLSerializeXMLTree(m_tree.get());
    std::string copy = text;
    CPLFree(text);
    return copy;
  }

 private:
  CPLXMLTreeCloser m_tree;
  CPLXMLNode* m_root;
};

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
  for (CPLXMLNode* child = root->psChild; child != nullptr; child = child->psNext) {
    if (child->eType == CXT_Element && std::string_view(child->pszValue) == "VRTRasterBand") last = child;
  }
  return last;
}

}  // namespace

std::string WithNodata(const std::string& xml, const std::vector<int>& transparent) {
  const Document document(xml);
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
  const Document document(xml);
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
  const Document document(xml);
  CPLXMLNode* options = document.WarpOptions();
  const char* name = options == nullptr ? nullptr : CPLGetXMLValue(options, kSource, nullptr);
  if (name == nullptr) return std::nullopt;
  const bool isBeside = std::string_view(CPLGetXMLValue(options, "SourceDataset.relativeToVRT", "0")) == "1";
  const std::string path = isBeside ? CPLProjectRelativeFilename(folder.c_str(), name) : name;
  CPLSetXMLValue(options, kSource, path.c_str());
  CPLSetXMLValue(options, "SourceDataset.#relativeToVRT", "0");
  return WarpSource{path, document.Text()};
}

}  // namespace tiler
