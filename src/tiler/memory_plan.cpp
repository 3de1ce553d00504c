#include "tiler/memory_plan.h"

#include <algorithm>

#include "tiler/mercator.h"

namespace tiler {

namespace {

constexpr int kMostUnitLevels = 2;
// The program with its libraries, and what each thread has for its tiles.
constexpr std::int64_t kProgram = 96 * kMebibyte;
constexpr std::int64_t kThread = 24 * kMebibyte;
constexpr std::int64_t kMostCache = 368 * kMebibyte;
constexpr std::int64_t kMostForStrips = 300 * kMebibyte;
// Where each thread has strips of its own.
constexpr std::int64_t kUsualCopies = 4;
// Enough for images in blocks, of which only those at the edge of a unit are wanted again.
constexpr std::int64_t kCacheForBlocks = 128 * kMebibyte;
constexpr std::int64_t kLeastCache = 32 * kMebibyte;
// The strips of a row of units lie askew on the map, and the next row has begun before the last unit is made.
constexpr double kMargin = 1.5;

std::int64_t BytesOfStrips(const SourceLayout& layout, double rowsOfTile, int unitLevels) {
  const double rows = rowsOfTile * (1 << unitLevels) * kMargin + 2.0 * layout.blockHeight;
  return static_cast<std::int64_t>(rows * static_cast<double>(layout.rowBytes));
}

}  // namespace

int UnitLevelsFor(const SourceLayout& layout, double rowsOfTile, bool isShared) {
  int levels = kMostUnitLevels;
  if (!layout.IsStriped()) return levels;
  const std::int64_t most = isShared ? kMostForStrips : kMostForStrips / kUsualCopies;
  while (levels > 0 && BytesOfStrips(layout, rowsOfTile, levels) > most) --levels;
  return levels;
}

// Of each unit a quarter of a tile; and as much again of all the levels above them.
std::int64_t WaitingFor(std::int64_t unitsInARow) {
  constexpr std::int64_t kQuarter = std::int64_t{4} * kTileSize * kTileSize / 4;
  return unitsInARow * 2 * kQuarter;
}

std::int64_t UsualMemory(int threads) {
  return kProgram + threads * kThread + kMostCache;
}

std::int64_t CacheFor(const SourceLayout& layout, double rowsOfTile, bool isShared, int threads,
                      std::int64_t memory) {
  std::int64_t wanted = kCacheForBlocks;
  if (layout.IsStriped()) {
    const int levels = UnitLevelsFor(layout, rowsOfTile, isShared);
    const std::int64_t copies = isShared ? 1 : threads;
    wanted = std::max(wanted, copies * BytesOfStrips(layout, rowsOfTile, levels));
  }
  const std::int64_t most = std::max(kLeastCache, memory - kProgram - threads * kThread);
  return std::min(wanted, most);
}

}  // namespace tiler
