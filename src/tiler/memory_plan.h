// How a run gets along with little memory, however large the image is. Portable, no state.
#ifndef MOSAICON_TILER_MEMORY_PLAN_H_
#define MOSAICON_TILER_MEMORY_PLAN_H_

#include <cstdint>

namespace tiler {

inline constexpr std::int64_t kMebibyte = 1 << 20;

// How the pixels of an image lie in its file. Blocks are what is read and decoded at a time.
struct SourceLayout {
  int width = 0;              // pixels
  std::int64_t rowBytes = 0;  // of a row of pixels, all bands, decoded
  int blockWidth = 0;         // pixels
  int blockHeight = 0;

  // Whether its blocks are strips, as wide as the image. A row of tiles needs the same ones from its west to
  // its east end.
  bool IsStriped() const { return blockWidth >= width; }
};

// The levels of a unit of tiles (see TilePlan) below its uppermost tile, 0 to 2: units are lower where the
// strips of high ones would not fit into memory. rowsOfTile: of the image, that a tile of the finest level
// covers. isShared: all threads read the same strips. It depends on the image alone, not on how many threads
// there are, because shares of a map are to have the same units on all computers.
int UnitLevelsFor(const SourceLayout& layout, double rowsOfTile, bool isShared);

// Bytes of what waits for the next row of units, in rows of so many.
std::int64_t WaitingFor(std::int64_t unitsInARow);

// What a run may take for the whole program, in bytes, when nobody says so.
std::int64_t UsualMemory(int threads);

// Bytes for decoded blocks of the image. memory: bytes for the whole program, without what waits.
std::int64_t CacheFor(const SourceLayout& layout, double rowsOfTile, bool isShared, int threads,
                      std::int64_t memory);

}  // namespace tiler

#endif  // MOSAICON_TILER_MEMORY_PLAN_H_
