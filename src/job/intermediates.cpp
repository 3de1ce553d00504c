#include "job/intermediates.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_minixml.h>

#include <cmath>
#include <string_view>
#include <vector>

#include "kvtools/ascii.h"
#include "kvtools/split_path.h"

namespace {

// The translator is given whole pixels.
constexpr double kPixelTolerance = 0.5;

// The root element; null when xml is no virtual raster.
const CPLXMLNode* FindRoot(const CPLXMLTreeCloser& document) {
  return document ? CPLGetXMLNode(document.get(), "=VRTDataset") : nullptr;
}

CPLXMLTreeCloser Parse(const std::string& xml) {
  CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
  return CPLXMLTreeCloser(CPLParseXMLString(xml.c_str()));
}

// All elements of this name below a node.
void Collect(const CPLXMLNode* node, std::string_view name, std::vector<const CPLXMLNode*>& found) {
  for (const CPLXMLNode* child = node->psChild; child != nullptr; child = child->psNext) {
    if (child->eType == CXT_Element && name == child->pszValue) found.push_back(child);
    Collect(child, name, found);
  }
}

// Whether the file that an element names lies beside the one that holds the element and is called as
// path is. Letters beyond ASCII are passed over: the tools write UTF-8, and path is in the code page.
bool NamesFileBeside(const CPLXMLNode* element, const std::string& path) {
  const auto fold = [](const std::string& text) {
    std::string folded = LowerAscii(text);
    std::erase_if(folded, [](unsigned char letter) { return letter >= 0x80; });
    return folded;
  };
  const PathParts parts = SplitPath(path);
  return std::string(CPLGetXMLValue(element, "relativeToVRT", "0")) == "1" &&
         fold(CPLGetXMLValue(element, nullptr, "")) == fold(parts.name + parts.extension);
}

bool IsAt(const CPLXMLNode* point, const TifCorner& corner) {
  return std::abs(CPLAtof(CPLGetXMLValue(point, "Pixel", "nan")) - corner.dfPixel) <= kPixelTolerance &&
         std::abs(CPLAtof(CPLGetXMLValue(point, "Line", "nan")) - corner.dfLine) <= kPixelTolerance;
}

}  // namespace

bool IsTranslationOf(const CTifData& data, const std::string& xml) {
  const CPLXMLTreeCloser document = Parse(xml);
  const CPLXMLNode* root = FindRoot(document);
  if (root == nullptr) return false;
  std::vector<const CPLXMLNode*> sources;
  Collect(root, "SourceFilename", sources);
  for (const CPLXMLNode* source : sources) {
    if (!NamesFileBeside(source, data.m_strFileName)) return false;
  }
  std::vector<const CPLXMLNode*> points;
  Collect(root, "GCP", points);
  if (sources.empty() || points.size() != data.m_vCorners.size()) return false;
  for (size_t i = 0; i < points.size(); ++i) {
    if (!IsAt(points[i], data.m_vCorners[i])) return false;
  }
  return true;
}

bool IsWarpOf(const std::string& translatedFile, const std::string& xml) {
  const CPLXMLTreeCloser document = Parse(xml);
  const CPLXMLNode* root = FindRoot(document);
  const CPLXMLNode* source = root != nullptr ? CPLGetXMLNode(root, "GDALWarpOptions.SourceDataset") : nullptr;
  return source != nullptr && NamesFileBeside(source, translatedFile);
}
