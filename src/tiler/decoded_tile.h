// Reads tiles that were written before.
#ifndef MOSAICON_TILER_DECODED_TILE_H_
#define MOSAICON_TILER_DECODED_TILE_H_

#include <optional>
#include <string>

#include "tiler/tile_pixels.h"

namespace tiler {

// Of the content of a file of any kind; a missing alpha channel is opaque, a single colour grey. nullopt when
// it is no whole tile. Complains to GDAL's error handler of this thread.
std::optional<Tile> DecodedTile(const std::string& content);

}  // namespace tiler

#endif  // MOSAICON_TILER_DECODED_TILE_H_
