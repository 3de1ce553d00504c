#include "tiler/tiler_error.h"

#include <gtest/gtest.h>

namespace tiler {
namespace {

TEST(OneLine, HasSingleBlanksOnly) {
  EXPECT_EQ(OneLine("a\n  b\r\n"), "a b");
  EXPECT_EQ(OneLine("\t "), "");
  EXPECT_EQ(OneLine("wiesen é"), "wiesen é");
}

TEST(TilerError, IsOneLine) {
  EXPECT_STREQ(TilerError("could not write\na b").what(), "could not write a b");
  EXPECT_STREQ(Stopped().what(), "the run was stopped before it was complete");
}

}  // namespace
}  // namespace tiler
