// Where the pixels of a tile lie in the source image, exactly, without asking for the exact position of every
// one. Portable.
#ifndef MOSAICON_TILER_POSITION_CELLS_H_
#define MOSAICON_TILER_POSITION_CELLS_H_

#include <vector>

#include "tiler/cell_polynomial.h"
#include "tiler/mercator.h"

namespace tiler {

// A square of a tile's pixels in which positions are given by polynomials. Places in it are counted from the
// middle of its first pixel; its side is 1.
struct PositionCell {
  int left = 0;  // in the tile, in pixels
  int top = 0;
  int size = 0;
  CellValues xs;  // of positions in the source image, in pixels of it from its upper left corner
  CellValues ys;
  // The side of a pixel of the tile, seen in the source image: what a step to the next pixel across, and
  // down, changes in the position.
  double acrossX = 0;
  double acrossY = 0;
  double downX = 0;
  double downY = 0;
};

// Positions are right to a thousandth of a source pixel: cells are as large as that allows.
// Cells without any position are left out.
// exact: of positions in metres of the map. Of the tile's whole square.
std::vector<PositionCell> PositionCellsOf(const TileId& tile, const ExactPositions& exact);

}  // namespace tiler

#endif  // MOSAICON_TILER_POSITION_CELLS_H_
