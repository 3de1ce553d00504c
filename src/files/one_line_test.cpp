#include "files/one_line.h"

#include <gtest/gtest.h>

namespace files {
namespace {

TEST(OneLine, HasSingleBlanksOnly) {
  EXPECT_EQ(OneLine("a\n  b\r\n"), "a b");
  EXPECT_EQ(OneLine("\t "), "");
  EXPECT_EQ(OneLine("wiesen é"), "wiesen é");
}

}  // namespace
}  // namespace files
