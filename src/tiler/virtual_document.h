// The description of a virtual raster, taken apart.
#ifndef MOSAICON_TILER_VIRTUAL_DOCUMENT_H_
#define MOSAICON_TILER_VIRTUAL_DOCUMENT_H_

#include <cpl_minixml.h>

#include <string>
#include <vector>

namespace tiler {

class VirtualDocument {
 public:
  // Throws TilerError when xml is no virtual raster.
  explicit VirtualDocument(const std::string& xml);

  CPLXMLNode* Root() const { return m_root; }
  // Null where the image is not warped.
  CPLXMLNode* WarpOptions() const;

  std::string Text() const;

 private:
  CPLXMLTreeCloser m_tree;
  CPLXMLNode* m_root;
};

// Elements within another, in their order; null has none.
std::vector<CPLXMLNode*> ElementsOf(CPLXMLNode* parent);

// The path of an image that a node names. folder: of the file that the description comes from.
std::string PathIn(CPLXMLNode* node, const std::string& folder);

}  // namespace tiler

#endif  // MOSAICON_TILER_VIRTUAL_DOCUMENT_H_
