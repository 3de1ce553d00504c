// The pages beside a pyramid: three web maps and tilemapresource.xml, which tells other programs of it. As
// gdal2tiles writes them. Portable, no state.
#ifndef MOSAICON_TILER_MAP_PAGES_H_
#define MOSAICON_TILER_MAP_PAGES_H_

#include <string>

#include "tiler/pyramid.h"

namespace tiler {

// All texts in UTF-8.
struct PageTexts {
  std::string title;
  std::string googleKey;  // empty: none
};

std::string GoogleMapsPage(const Pyramid& pyramid, const PageTexts& texts);
std::string LeafletPage(const Pyramid& pyramid, const PageTexts& texts);
std::string OpenLayersPage(const Pyramid& pyramid, const PageTexts& texts);
// url is put before the levels; empty, or with a "/" at its end.
std::string TileMapResource(const Pyramid& pyramid, const std::string& title, const std::string& url);

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_PAGES_H_
