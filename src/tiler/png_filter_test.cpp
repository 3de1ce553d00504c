#include "tiler/png_filter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <vector>

namespace tiler {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Filtered(const Bytes& row, const Bytes& above, std::size_t pixelSize) {
  Bytes filtered(row.size() + 1);
  FilterRow(row.data(), above.data(), row.size(), pixelSize, filtered.data());
  return filtered;
}

std::uint8_t Paeth(int a, int b, int c) {
  const int p = a + b - c;
  const int pa = std::abs(p - a);
  const int pb = std::abs(p - b);
  const int pc = std::abs(p - c);
  return static_cast<std::uint8_t>(pa <= pb && pa <= pc ? a : pb <= pc ? b : c);
}

// As a reader of PNG does it.
Bytes Restored(const Bytes& filtered, const Bytes& above, std::size_t pixelSize) {
  Bytes row;
  for (std::size_t i = 0; i < above.size(); ++i) {
    const int a = i < pixelSize ? 0 : row[i - pixelSize];
    const int b = above[i];
    const int c = i < pixelSize ? 0 : above[i - pixelSize];
    const int predictions[] = {0, a, b, (a + b) / 2, Paeth(a, b, c)};
    row.push_back(static_cast<std::uint8_t>(filtered[i + 1] + predictions[filtered[0]]));
  }
  return row;
}

TEST(FilterRow, CanBeUndone) {
  std::mt19937 random(1);
  std::vector<int> used(5);
  for (int i = 0; i < 2000; ++i) {
    const std::size_t pixelSize = 1 + random() % 4;
    Bytes above(256 * pixelSize);
    Bytes row(above.size());
    const unsigned roughness = 1 + random() % 256;
    for (std::uint8_t& byte : above) byte = static_cast<std::uint8_t>(random() % roughness);
    for (std::size_t k = 0; k < row.size(); ++k) {
      const unsigned base = i % 3 == 0 ? above[k] : i % 3 == 1 && k >= pixelSize ? row[k - pixelSize] : 0U;
      row[k] = static_cast<std::uint8_t>(base + random() % roughness);
    }
    const Bytes filtered = Filtered(row, above, pixelSize);
    ASSERT_GE(filtered[0], 1);
    ASSERT_LE(filtered[0], 4);
    ++used[filtered[0]];
    EXPECT_EQ(Restored(filtered, above, pixelSize), row);
  }
  for (int type = 1; type <= 4; ++type) EXPECT_GT(used[static_cast<std::size_t>(type)], 0) << type;
}

TEST(FilterRow, TakesTheOneThatLeavesLeast) {
  const Bytes nothing(12);
  EXPECT_EQ(Filtered(Bytes(12, 7), nothing, 3), (Bytes{1, 7, 7, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  const Bytes any = {1, 50, 3, 99, 5, 6, 70, 8, 9, 100, 11, 12};
  EXPECT_EQ(Filtered(any, any, 3), (Bytes{2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

}  // namespace
}  // namespace tiler
