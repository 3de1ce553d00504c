// The KML files of a pyramid: one beside each tile, which shows it and leads to the finer ones below it when
// the viewer comes near, and doc.kml, which leads to the coarsest. As gdal2tiles writes them. Portable, no
// state.
#ifndef MOSAICON_TILER_KML_TEXT_H_
#define MOSAICON_TILER_KML_TEXT_H_

#include <string>
#include <vector>

#include "tiler/mercator.h"

namespace tiler {

// For text between tags and in attributes: the characters that XML keeps for itself as entities, without the
// control characters that it cannot hold.
std::string XmlEscaped(const std::string& text);

// Of a tile. finer: the tiles of the next level that it leads to, by links that are relative to its own file.
std::string TileKml(const TileId& tile, const std::vector<TileId>& finer);

// doc.kml. url is put before the links, UTF-8 and not escaped; empty, or with a "/" at its end. The text has
// no line break at its end.
std::string RootKml(const std::string& title, const std::string& url, const std::vector<TileId>& coarsest);

}  // namespace tiler

#endif  // MOSAICON_TILER_KML_TEXT_H_
