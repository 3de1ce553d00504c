#include "tiler/tiler_error.h"

#include <gtest/gtest.h>

namespace tiler {
namespace {

TEST(TilerError, IsOneLine) {
  EXPECT_STREQ(TilerError("could not write\na b").what(), "could not write a b");
  EXPECT_STREQ(Stopped().what(), "the run was stopped before it was complete");
}

}  // namespace
}  // namespace tiler
