#include "tiler/huffman_code.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace tiler {
namespace {

using Counts = std::vector<std::uint32_t>;
using Lengths = std::vector<std::uint8_t>;

// Of a complete code it is 2 to the power of 15.
unsigned Room(const Lengths& lengths) {
  unsigned room = 0;
  for (const std::uint8_t length : lengths) room += length == 0 ? 0U : 1U << (15 - length);
  return room;
}

TEST(CodeLengths, AreShortForWhatIsFrequent) {
  EXPECT_EQ(CodeLengths({8, 4, 2, 1, 1}, 15), (Lengths{1, 2, 3, 4, 4}));
  EXPECT_EQ(CodeLengths({1, 1, 1, 1}, 15), (Lengths{2, 2, 2, 2}));
  EXPECT_EQ(CodeLengths({5, 0, 9, 0}, 15), (Lengths{1, 0, 1, 0}));
}

TEST(CodeLengths, AreNothingForWhatDoesNotOccur) {
  EXPECT_EQ(CodeLengths({0, 0}, 15), (Lengths{0, 0}));
  EXPECT_EQ(CodeLengths({0, 3, 0}, 15), (Lengths{0, 1, 0}));
  EXPECT_EQ(CodeLengths({}, 15), Lengths{});
}

TEST(CodeLengths, AreLimitedAndComplete) {
  std::mt19937 random(1);
  for (int i = 0; i < 500; ++i) {
    const int most = i % 2 == 0 ? 15 : 7;
    Counts counts(2 + random() % (most == 15 ? 285 : 18));
    std::uint64_t value = 1;
    for (std::uint32_t& count : counts) {
      count = i % 3 == 0 ? 1 + random() % 1000
                         : static_cast<std::uint32_t>(std::min<std::uint64_t>(value, 1U << 30));
      value = value * 17 / 10 + 1;
    }
    const Lengths lengths = CodeLengths(counts, most);
    EXPECT_LE(*std::max_element(lengths.begin(), lengths.end()), most);
    EXPECT_GE(*std::min_element(lengths.begin(), lengths.end()), 1);
    EXPECT_EQ(Room(lengths), 1U << 15);
    for (std::size_t k = 1; k < counts.size(); ++k) {
      if (counts[k] > counts[k - 1]) {
        EXPECT_LE(lengths[k], lengths[k - 1]);
      }
    }
  }
}

TEST(CodesOf, CountUpwardsWithTheirBitsReversed) {
  EXPECT_EQ(CodesOf({1, 2, 3, 3, 0}), (std::vector<std::uint16_t>{0, 0b01, 0b011, 0b111, 0}));
  EXPECT_EQ(CodesOf({2, 1, 3, 3}), (std::vector<std::uint16_t>{0b01, 0, 0b011, 0b111}));
}

}  // namespace
}  // namespace tiler
