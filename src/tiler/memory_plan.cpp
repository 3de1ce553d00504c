#include "tiler/memory_plan.h"

#include <algorithm>

namespace tiler {

namespace {

constexpr int kMostUnitLevels = 2;
// The program with its libraries, and what each thread has for its tiles.
constexpr std::int64_t kProgram = 96 * kMebibyte;
constexpr std::int64_t kThread = 24 * kMebibyte;
constexpr std::int64_t kMostCache = 368 * kMebibyte;
constexpr std::int64_t kMostForStrips = 300 * kMebibyte;
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

int UnitLevelsFor(const SourceLayout& layout, double rowsOfTile) {
  int levels = kMostUnitLevels;
  if (!layout.IsStriped()) return levels;
  while (levels > 0 && BytesOfStrips(layout, rowsOfTile, levels) > kMostForStrips) --levels;
  return levels;
}

std::int64_t UsualMemory(int threads) {
  return kProgram + threads * kThread + kMostCache;
}

std::int64_t CacheFor(const SourceLayout& layout, double rowsOfTile, int copies, int threads,
                      std::int64_t memory) {
  std::int64_t wanted = kCacheForBlocks;
  if (layout.IsStriped()) {
    const std::int64_t strips = BytesOfStrips(layout, rowsOfTile, UnitLevelsFor(layout, rowsOfTile));
    wanted = std::max(wanted, copies * strips);
  }
  const std::int64_t most = std::max(kLeastCache, memory - kProgram - threads * kThread);
  return std::min(wanted, most);
}

}  // namespace tiler
