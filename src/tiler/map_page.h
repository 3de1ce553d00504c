// The page that shows a map in a browser, without anything from the internet. Portable, no state.
#ifndef MOSAICON_TILER_MAP_PAGE_H_
#define MOSAICON_TILER_MAP_PAGE_H_

#include <string>
#include <string_view>
#include <vector>

#include "tiler/pyramid.h"
#include "tiler/tile_kinds.h"

namespace tiler {

// Names of the documents for Google Earth that lie beside the page, UTF-8; empty: there is none.
struct PageDocuments {
  std::string disk;  // whose links are relative
  std::string web;   // whose links begin with the address that it is published under
};

// A text of JSON within a page, where "<" could end the element that it is in. text: UTF-8.
std::string QuotedForPage(const std::string& text);

// leaflet.html. title: UTF-8.
std::string MapPage(const Pyramid& pyramid, const std::string& title, const PageDocuments& documents,
                    const TileKinds& kinds);

// What another page needs of these scripts to name tiles: within it, Mosaicon.tileName(orthophoto, level,
// column, row).
std::string TileNameScripts(const Pyramid& pyramid, const TileKinds& kinds);

// What the page needs, in a folder of this name beside it.
inline constexpr char kPageFolder[] = "leaflet";
struct PageFile {
  const char* name;
  std::string_view content;
};
const std::vector<PageFile>& PageFiles();

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_PAGE_H_
