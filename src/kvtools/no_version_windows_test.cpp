// Runs in a program without a version resource.

#include <gtest/gtest.h>

#include "kvtools/kvtools.h"

namespace {

TEST(VersionInfo, IsEmptyWithoutAVersionResource) {
  char text[1024] = "left over";
  EXPECT_EQ(KVT_GetVersionInfo(text, sizeof text), 0);
  EXPECT_STREQ(text, "");
}

}  // namespace
