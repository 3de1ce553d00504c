#include "job/progress_record.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

namespace {

int Parse(const std::string& text) {
  char buffer[kProgressChunk] = {};
  std::memcpy(buffer, text.data(), std::min(text.size(), sizeof buffer));
  return ParseProgressChunk(buffer);
}

TEST(ProgressChunk, TakesTheSecondFieldAsAFraction) {
  struct Case {
    const char* text;
    int percent;
  };
  const Case cases[] = {
      {"Progress 0.5 done", 50},
      {"x 1.0 y", 100},
      {"x 0.999 y", 99},
      {"x 0.0 y", 0},
      {"x 0.29 y", 28},  // 0.29 * 100 is a little below 29
      {"Progress 0.25 done\nProgress 0.26 done\n", 25},
      {" 0.5 x", 50},
      {"x  0.5 y", 0},  // the second field is empty
      {"Progress  0.5 y", 0},
      {"x 1.5 y", 150},
      {"x -0.5 y", -50},
      {"x abc y", 0},
      {"x 0.5abc y", 50},
      {"x nan y", 0},
      {"x -nan y", 0},
      {"", 0},
      {"x", 0},
      {"x 0.5", 0},
      {"x\t0.5\ty", 0},
  };
  for (const Case& each : cases) EXPECT_EQ(Parse(each.text), each.percent) << each.text;
}

TEST(ProgressChunk, StaysInTheRangeOfAnInteger) {
  EXPECT_EQ(Parse("x 1e300 y"), INT_MAX);
  EXPECT_EQ(Parse("x -1e300 y"), INT_MIN);
}

TEST(ProgressChunk, EndsAtTheFirstZeroByte) {
  EXPECT_EQ(Parse(std::string("x 0.5\0 y", 8)), 0);
}

TEST(ProgressChunk, DoesNotNeedATerminator) {
  EXPECT_EQ(Parse("x 0.5 " + std::string(kProgressChunk, 'y')), 50);
  EXPECT_EQ(Parse("x 0.5" + std::string(kProgressChunk - 6, '0') + " "), 50) << "to the last byte";
  EXPECT_EQ(Parse(std::string(kProgressChunk, '1')), 0);
  EXPECT_EQ(Parse("x " + std::string(kProgressChunk - 2, '1')), 0);
}

}  // namespace
