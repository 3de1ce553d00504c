// Tiles of the finest level in one step from the pixels of the source image, each at its exact place, and
// colours weighted by transparency. Portable, no state.
#ifndef MOSAICON_TILER_EXACT_TILE_H_
#define MOSAICON_TILER_EXACT_TILE_H_

#include <vector>

#include "tiler/axis_weights.h"
#include "tiler/pixel_window.h"
#include "tiler/position_cells.h"
#include "tiler/tile_pixels.h"

namespace tiler {

// The part of the source image, of this size, that the cells are made of; empty where they lie outside of it.
PixelWindow SourceOf(const std::vector<PositionCell>& cells, Resampling resampling, int width, int height);

// The tile. pixels: of the window that SourceOf gave, in rows. Outside of the image there is nothing to be
// seen.
Tile ExactTile(const std::vector<PositionCell>& cells, Resampling resampling, const PixelWindow& window,
               const std::vector<Pixel>& pixels);

// What a tile is in the one of the level above: as HalvedTile, with colours weighted by transparency.
Quarter HalvedByOpacity(const Tile& tile);

}  // namespace tiler

#endif  // MOSAICON_TILER_EXACT_TILE_H_
