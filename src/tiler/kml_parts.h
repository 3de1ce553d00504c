// Parts of KML files. Portable, no state.
#ifndef MOSAICON_TILER_KML_PARTS_H_
#define MOSAICON_TILER_KML_PARTS_H_

#include <string>

#include "tiler/mercator.h"

namespace tiler {

inline constexpr int kForEver = -1;

// Sizes of a region on the screen, in pixels, between which what it holds is shown. most: or kForEver.
struct PixelLimits {
  int least = 0;
  int most = kForEver;
};

// Of a tile: "LEVEL/COLUMN/ROW".
std::string Path(const TileId& tile);

// Elements. indent: blanks before their lines.
std::string Region(const Bounds& box, const PixelLimits& limits, const std::string& indent);
// A view from above, so high that all of it is to be seen with a little around it.
std::string LookFromAbove(const Bounds& degrees);
// A tile's image. href: where it is from the file; region: an element with indent of six, empty where the
// overlay takes that of the file.
std::string Overlay(const TileId& tile, const Bounds& box, const std::string& href,
                    const std::string& region = "");

}  // namespace tiler

#endif  // MOSAICON_TILER_KML_PARTS_H_
