// Which tile of a map is of which kind, as its pages tell it. Portable.
#ifndef MOSAICON_TILER_TILE_KINDS_H_
#define MOSAICON_TILER_TILE_KINDS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "tiler/pyramid.h"
#include "tiler/tile_kind.h"

namespace tiler {

// Keeps one bit for a tile. One thread at a time.
class TileKinds {
 public:
  // All tiles are of the first kind of the format until something else is said. pyramid has to live as long.
  TileKinds(const Pyramid& pyramid, TileFormat format);

  // kind: one of the format's.
  void Set(const TileId& tile, TileKind kind);
  TileKind Of(const TileId& tile) const;

  // Whether all are PNG, because the format is.
  bool AreExact() const { return m_kinds == std::vector{TileKind::kPng}; }
  // What most tiles are; any of them where there are as many of both.
  TileKind Usual() const;
  // What the rest is; empty where there is no rest.
  std::vector<TileKind> Other() const;
  // How many neighbours of a level are of the same kind: tiles of the usual kind, then of the other, and so
  // on, row by row from the south-west corner. Without the last ones when they are of the usual kind.
  std::vector<std::int64_t> RunsOf(int level) const;

  // {"kinds": ["jpg", "png"], "runs": {"17": [0, 3, 5, 1]}}: what Usual and Other are, and RunsOf the levels
  // that have any. JSON.
  std::string Text() const;

 private:
  // Of the tile in the levels' bits.
  std::size_t PlaceOf(const TileId& tile) const;

  const Pyramid& m_pyramid;
  std::vector<TileKind> m_kinds;             // by bit
  std::vector<std::vector<bool>> m_seconds;  // by level, from the coarsest; empty where there is one kind
  std::int64_t m_secondCount = 0;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_TILE_KINDS_H_
