// Runs in a program with testing/version.rc.

#include <gtest/gtest.h>

#include <string>

#include "kvtools/kvtools.h"

namespace {

TEST(VersionInfo, IsTheFileVersionOfTheFirstTranslationAsItStands) {
  char text[1024] = "left over";
  EXPECT_EQ(KVT_GetVersionInfo(text, sizeof text), 12);
  EXPECT_STREQ(text, "7,6,5,4 test");
}

TEST(VersionInfo, IsCutToTheBuffer) {
  char text[8] = "xxxxxxx";
  EXPECT_EQ(KVT_GetVersionInfo(text, 4), 3);
  EXPECT_EQ(std::string(text, sizeof text), std::string("7,6\0xxx\0", 8));
  EXPECT_EQ(KVT_GetVersionInfo(nullptr, 10), 0);
}

}  // namespace
