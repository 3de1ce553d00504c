#include "job/bounded_text.h"

#include <gtest/gtest.h>

namespace {

TEST(FormatBounded, RefusesWhatDoesNotFit) {
  EXPECT_EQ(FormatBounded(4, "%s", "abc"), "abc");
  EXPECT_EQ(FormatBounded(4, "%s", "abcd"), std::nullopt);
  EXPECT_EQ(FormatBounded(10, "%d|%s", 7, "x"), "7|x");
  EXPECT_EQ(FormatBounded(1, "%s", ""), "");
}

}  // namespace
