#include "tiler/memory_plan.h"

#include <gtest/gtest.h>

namespace tiler {
namespace {

constexpr double kRowsOfTile = 512;  // the most: a level is at most twice as coarse as the image

SourceLayout Striped(int width, int blockHeight = 1) {
  return {width, std::int64_t{3} * width, width, blockHeight};
}
SourceLayout InBlocks(int width) {
  return {width, std::int64_t{3} * width, 256, 256};
}
std::int64_t UsualCache(const SourceLayout& layout, bool isShared, int threads) {
  return CacheFor(layout, kRowsOfTile, isShared, threads, UsualMemory(threads));
}

TEST(MemoryPlan, HasLowerUnitsForWideStrips) {
  EXPECT_EQ(UnitLevelsFor(Striped(3000), kRowsOfTile, true), 2);
  EXPECT_EQ(UnitLevelsFor(Striped(30000), kRowsOfTile, true), 2);
  EXPECT_EQ(UnitLevelsFor(Striped(60000), kRowsOfTile, true), 1);
  EXPECT_EQ(UnitLevelsFor(Striped(60000), kRowsOfTile / 2, true), 2);
  EXPECT_EQ(UnitLevelsFor(Striped(120000), kRowsOfTile, true), 0);
  EXPECT_EQ(UnitLevelsFor(Striped(10000000), kRowsOfTile, true), 0);
  EXPECT_EQ(UnitLevelsFor(InBlocks(10000000), kRowsOfTile, true), 2);
}

TEST(MemoryPlan, HasLowerUnitsWhereEachThreadHasStripsOfItsOwn) {
  EXPECT_EQ(UnitLevelsFor(Striped(3000), kRowsOfTile, false), 2);
  EXPECT_EQ(UnitLevelsFor(Striped(15000), kRowsOfTile, false), 1);
  EXPECT_EQ(UnitLevelsFor(Striped(30000), kRowsOfTile, false), 0);
  EXPECT_EQ(UnitLevelsFor(InBlocks(30000), kRowsOfTile, false), 2);
}

std::int64_t BytesOfUnits(const SourceLayout& layout, bool isShared) {
  const double rows = kRowsOfTile * (1 << UnitLevelsFor(layout, kRowsOfTile, isShared));
  return static_cast<std::int64_t>(rows) * layout.rowBytes;
}

TEST(MemoryPlan, KeepsTheStripsOfARowOfUnits) {
  for (const int width : {3000, 30000, 60000, 120000}) {
    const SourceLayout layout = Striped(width);
    for (const int threads : {1, 2, 16, 256}) {
      EXPECT_GT(UsualCache(layout, true, threads), BytesOfUnits(layout, true));
    }
  }
  for (const int width : {3000, 15000, 30000}) {
    const SourceLayout layout = Striped(width);
    for (const int threads : {1, 2, 4}) {
      EXPECT_GT(UsualCache(layout, false, threads), threads * BytesOfUnits(layout, false));
    }
  }
  EXPECT_GT(UsualCache(Striped(10000, 2000), true, 1), std::int64_t{2000 + 2048} * 30000) << "high strips";
}

TEST(MemoryPlan, StaysWithinTheMemory) {
  EXPECT_LT(UsualMemory(2), 600 * kMebibyte);
  for (const int threads : {1, 2, 16}) {
    for (const SourceLayout& layout : {Striped(3000), Striped(30000), Striped(1000000), InBlocks(30000)}) {
      EXPECT_LE(UsualCache(layout, false, threads) + (96 + 24 * std::int64_t{threads}) * kMebibyte,
                UsualMemory(threads));
    }
  }
  EXPECT_EQ(CacheFor(Striped(30000), kRowsOfTile, true, 2, 256 * kMebibyte), (256 - 96 - 48) * kMebibyte);
  EXPECT_EQ(CacheFor(InBlocks(30000), kRowsOfTile, false, 2, 200 * kMebibyte), (200 - 96 - 48) * kMebibyte);
  EXPECT_EQ(CacheFor(Striped(30000), kRowsOfTile, true, 256, 128 * kMebibyte), 32 * kMebibyte) << "the least";
}

TEST(MemoryPlan, KnowsWhatWaits) {
  EXPECT_EQ(WaitingFor(1), 128 << 10);
  EXPECT_EQ(WaitingFor(800), 100 * kMebibyte);
}

TEST(MemoryPlan, TakesNoMoreThanItNeeds) {
  EXPECT_EQ(UsualCache(InBlocks(30000), false, 16), 128 * kMebibyte);
  EXPECT_EQ(UsualCache(Striped(300), true, 1), 128 * kMebibyte);
}

}  // namespace
}  // namespace tiler
