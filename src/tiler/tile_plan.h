// Who makes which tile: the pieces that a run is cut into, and which of them are made by one of several runs
// that share the work. Portable; nothing in it changes once it is made.
#ifndef MOSAICON_TILER_TILE_PLAN_H_
#define MOSAICON_TILER_TILE_PLAN_H_

#include <cstdint>
#include <optional>
#include <vector>

#include "tiler/pyramid.h"
#include "tiler/request.h"

namespace tiler {

// The finest levels of a pyramid are cut in units: squares of tiles with all that lies between them and the
// one tile that stands for them. Of N shares each has its part of the units, neighbours as far as that is
// possible, and of the levels above them those tiles that stand for units of its own alone.
class TilePlan {
 public:
  // pyramid has to live as long. unitLevels: of a unit, below its uppermost tile. Without a share: all tiles.
  TilePlan(const Pyramid& pyramid, int unitLevels, const std::optional<Share>& share = std::nullopt);

  // Of this share, each as the tile that stands for it: rows from the north, columns from the west, as most
  // images lie on the disk.
  const std::vector<TileId>& Units() const { return m_units; }
  // Whether this share makes the tile. False for one that the pyramid does not have.
  bool Makes(const TileId& tile) const;
  // How many this share makes.
  std::int64_t TileCount() const;

  // The tiles of the next level that a tile stands for: rows from the north, columns from the west.
  std::vector<TileId> Finer(const TileId& tile) const;

 private:
  void KeepShare(const Share& share);
  void AddOverviews();
  std::int64_t TilesOfUnit(const TileId& unit) const;

  const Pyramid& m_pyramid;
  int m_unitLevel;
  std::vector<TileId> m_units;
  std::vector<TileId> m_made;  // units and the tiles above them, in the order of TileId
};

// The tile of the level above that stands for a tile.
inline TileId Above(const TileId& tile) {
  return {tile.level - 1, tile.column / 2, tile.row / 2};
}

}  // namespace tiler

#endif  // MOSAICON_TILER_TILE_PLAN_H_
