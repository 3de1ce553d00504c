#include "tiler/virtual_document.h"

#include <cpl_conv.h>

#include <string_view>

#include "tiler/tiler_error.h"

namespace tiler {

VirtualDocument::VirtualDocument(const std::string& xml) : m_tree(CPLParseXMLString(xml.c_str())) {
  m_root = m_tree ? CPLGetXMLNode(m_tree.get(), "=VRTDataset") : nullptr;
  if (m_root == nullptr) throw TilerError(std::string(kNotRead) + ": no virtual raster was made");
}

CPLXMLNode* VirtualDocument::WarpOptions() const {
  return CPLGetXMLNode(m_root, "GDALWarpOptions");
}

std::string VirtualDocument::Text() const {
  char* text = CPLSerializeXMLTree(m_tree.get());
  std::string copy = text;
  CPLFree(text);
  return copy;
}

std::vector<CPLXMLNode*> ElementsOf(CPLXMLNode* parent) {
  std::vector<CPLXMLNode*> elements;
  CPLXMLNode* child = parent == nullptr ? nullptr : parent->psChild;
  for (; child != nullptr; child = child->psNext) {
    if (child->eType == CXT_Element) elements.push_back(child);
  }
  return elements;
}

std::string PathIn(CPLXMLNode* node, const std::string& folder) {
  const char* name = CPLGetXMLValue(node, "", "");
  const bool isBeside = std::string_view(CPLGetXMLValue(node, "relativeToVRT", "0")) == "1";
  return isBeside ? CPLProjectRelativeFilename(folder.c_str(), name) : name;
}

}  // namespace tiler
