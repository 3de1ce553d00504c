// The KML files of a map: beside every tile of each second level one that shows it and the next finer ones,
// and leads to those below them when the viewer comes near, and doc.kml, which leads to the coarsest. They
// keep what OGC KML 2.2 asks for. Portable, no state.
#ifndef MOSAICON_TILER_MAP_KML_H_
#define MOSAICON_TILER_MAP_KML_H_

#include <string>
#include <vector>

#include "tiler/mercator.h"
#include "tiler/tile_kind.h"
#include "tiler/tile_pixels.h"

namespace tiler {

// A tile as a file shows it.
struct ShownTile {
  TileId tile;
  TileKind kind = TileKind::kPng;
  bool isCoarsest = false;     // there is nothing coarser, which would be seen from afar
  bool isFinest = false;       // there is nothing finer, which would take its place
  bool isTranslucent = false;  // what is drawn below it shows through
};

// Whether tiles of a level have files of their own. Files of two levels each, counted from the finest, are a
// fifth as many as those of one; a viewer asks for half as many, and waits half as often for one that leads
// to the next. Files of three levels hold too much that is not looked at (scripts/kml-levels).
bool BeginsFile(int level, int coarsest, int finest);

// Whether a good part of what is to be seen is only half opaque: more than the seams of an image.
bool IsTranslucent(const Tile& pixels);

// The file of the first of the tiles, which shows all of them. linked: the tiles whose files it leads to, by
// links that are relative to its own.
std::string MapTileKml(const std::vector<ShownTile>& shown, const std::vector<TileId>& linked);

// doc.kml. title: UTF-8. url is put before the links, UTF-8 and not escaped; empty, or with a "/" at its end.
// degrees: where the map is, which the viewer looks at from above. The text has no line break at its end.
std::string MapRootKml(const std::string& title, const std::string& url, const std::vector<TileId>& coarsest,
                       const Bounds& degrees);

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_KML_H_
