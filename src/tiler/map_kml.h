// The KML files of a map: one beside each tile, which shows it and leads to the finer ones below it when the
// viewer comes near, and doc.kml, which leads to the coarsest. They keep what OGC KML 2.2 asks for. Portable,
// no state.
#ifndef MOSAICON_TILER_MAP_KML_H_
#define MOSAICON_TILER_MAP_KML_H_

#include <string>
#include <vector>

#include "tiler/mercator.h"
#include "tiler/tile_kind.h"
#include "tiler/tile_pixels.h"

namespace tiler {

// How a tile is shown.
struct TileLook {
  TileKind kind = TileKind::kPng;
  bool isCoarsest = false;     // there is nothing coarser, which would be seen from afar
  bool isTranslucent = false;  // what is drawn below it shines through
};

// Whether a good part of what is to be seen is only half opaque: more than the seams of an image.
bool IsTranslucent(const Tile& pixels);

// Of a tile. finer: the tiles of the next level that it leads to, by links that are relative to its own file.
std::string MapTileKml(const TileId& tile, const std::vector<TileId>& finer, const TileLook& look);

// doc.kml. title: UTF-8. url is put before the links, UTF-8 and not escaped; empty, or with a "/" at its end.
// degrees: where the map is, which the viewer looks at from above. The text has no line break at its end.
std::string MapRootKml(const std::string& title, const std::string& url, const std::vector<TileId>& coarsest,
                       const Bounds& degrees);

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_KML_H_
