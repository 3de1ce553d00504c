#include "tiler/tile_plan.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace tiler {

namespace {

// Where a tile comes when a level is walked square by square: four neighbours, then the next four, and so on
// with squares of four squares. What comes in one go is close together.
std::uint64_t PlaceOnWalk(const TileId& tile) {
  std::uint64_t place = 0;
  for (int bit = tile.level - 1; bit >= 0; --bit) {
    place = place << 2 | static_cast<std::uint64_t>(tile.row >> bit & 1) << 1 |
            static_cast<std::uint64_t>(tile.column >> bit & 1);
  }
  return place;
}

bool IsBeforeOnWalk(const TileId& one, const TileId& other) {
  return PlaceOnWalk(one) < PlaceOnWalk(other);
}

bool IsBeforeInImage(const TileId& one, const TileId& other) {
  return std::make_tuple(-one.row, one.column) < std::make_tuple(-other.row, other.column);
}

std::vector<TileId> TilesOf(const TileRange& range, int level) {
  std::vector<TileId> tiles;
  for (int row = range.north; row >= range.south; --row) {
    for (int column = range.west; column <= range.east; ++column) tiles.push_back({level, column, row});
  }
  return tiles;
}

// How many of first to last stand below a column or row that is so many levels further up.
std::int64_t CountBelow(int number, int levels, int first, int last) {
  const std::int64_t below = std::int64_t{number} << levels;
  const std::int64_t behind = (std::int64_t{number} + 1) << levels;
  return std::min<std::int64_t>(last, behind - 1) - std::max<std::int64_t>(first, below) + 1;
}

}  // namespace

TilePlan::TilePlan(const Pyramid& pyramid, int unitLevels, const std::optional<Share>& share)
    : m_pyramid(pyramid), m_unitLevel(std::max(pyramid.Coarsest(), pyramid.Finest() - unitLevels)) {
  m_units = TilesOf(pyramid.Range(m_unitLevel), m_unitLevel);
  if (share) KeepShare(*share);
  m_made = m_units;
  std::sort(m_made.begin(), m_made.end());
  AddOverviews();
}

// Equal numbers of tiles, not of units: at the edges of the image these have few.
void TilePlan::KeepShare(const Share& share) {
  std::sort(m_units.begin(), m_units.end(), IsBeforeOnWalk);
  std::int64_t total = 0;
  for (const TileId& unit : m_units) total += TilesOfUnit(unit);
  std::int64_t before = 0;
  std::vector<TileId> kept;
  for (const TileId& unit : m_units) {
    if (before * share.count / total == share.index) kept.push_back(unit);
    before += TilesOfUnit(unit);
  }
  m_units = std::move(kept);
  std::sort(m_units.begin(), m_units.end(), IsBeforeInImage);
}

// Level by level; coarser tiles are smaller in the order, so each level goes before what was there.
void TilePlan::AddOverviews() {
  for (int level = m_unitLevel - 1; level >= m_pyramid.Coarsest(); --level) {
    std::vector<TileId> tiles = TilesOf(m_pyramid.Range(level), level);
    std::erase_if(tiles, [this](const TileId& tile) {
      const std::vector<TileId> finer = Finer(tile);
      return !std::all_of(finer.begin(), finer.end(), [this](const TileId& each) { return Makes(each); });
    });
    std::sort(tiles.begin(), tiles.end());
    m_made.insert(m_made.begin(), tiles.begin(), tiles.end());
  }
}

bool TilePlan::Makes(const TileId& tile) const {
  if (tile.level < m_pyramid.Coarsest() || tile.level > m_pyramid.Finest()) return false;
  TileId maker = tile;
  while (maker.level > m_unitLevel) maker = Above(maker);
  return std::binary_search(m_made.begin(), m_made.end(), maker);
}

std::int64_t TilePlan::TileCount() const {
  auto count = static_cast<std::int64_t>(m_made.size() - m_units.size());
  for (const TileId& unit : m_units) count += TilesOfUnit(unit);
  return count;
}

std::int64_t TilePlan::TilesOfUnit(const TileId& unit) const {
  std::int64_t count = 0;
  for (int level = m_unitLevel; level <= m_pyramid.Finest(); ++level) {
    const TileRange& range = m_pyramid.Range(level);
    count += CountBelow(unit.column, level - m_unitLevel, range.west, range.east) *
             CountBelow(unit.row, level - m_unitLevel, range.south, range.north);
  }
  return count;
}

std::vector<TileId> TilePlan::Finer(const TileId& tile) const {
  std::vector<TileId> finer;
  if (tile.level == m_pyramid.Finest()) return finer;
  const TileRange& range = m_pyramid.Range(tile.level + 1);
  for (int row = std::min(range.north, 2 * tile.row + 1); row >= std::max(range.south, 2 * tile.row); --row) {
    for (int column = std::max(range.west, 2 * tile.column);
         column <= std::min(range.east, 2 * tile.column + 1); ++column) {
      finer.push_back({tile.level + 1, column, row});
    }
  }
  return finer;
}

}  // namespace tiler
