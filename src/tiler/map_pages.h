// The pages beside a pyramid: three web maps and tilemapresource.xml, which tells other programs of it. As
// gdal2tiles writes them, but for tiles that it does not make. Portable, no state.
#ifndef MOSAICON_TILER_MAP_PAGES_H_
#define MOSAICON_TILER_MAP_PAGES_H_

#include <string>

#include "tiler/pyramid.h"
#include "tiler/tile_kinds.h"

namespace tiler {

// All texts in UTF-8.
struct PageTexts {
  std::string title;
  std::string googleKey;  // empty: none
};

std::string GoogleMapsPage(const Pyramid& pyramid, const PageTexts& texts, const TileKinds& kinds);
std::string LeafletPage(const Pyramid& pyramid, const PageTexts& texts);
std::string OpenLayersPage(const Pyramid& pyramid, const PageTexts& texts, const TileKinds& kinds);
// url is put before the levels; empty, or with a "/" at its end. The format knows maps of one kind of tiles
// alone: it gets the usual kind, and tiles of the other are named in an element of our own.
std::string TileMapResource(const Pyramid& pyramid, const std::string& title, const std::string& url,
                            const TileKinds& kinds);

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_PAGES_H_
