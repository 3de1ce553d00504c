// Runs against whichever profile store the test program links.

#include <gtest/gtest.h>

#include "kvtools/kvtools.h"

namespace {

class Profile : public testing::Test {
 protected:
  void SetUp() override { KVT_SetProfileProduct("Mosaicon Test"); }

  static std::string Get(const char* key, const char* defaultValue, int size = 64) {
    std::string buffer(static_cast<size_t>(size), 'x');
    const int count = KVT_GetUserProfileString("Input", key, defaultValue, buffer.data(), size);
    EXPECT_EQ(buffer[static_cast<size_t>(count)], '\0');
    return buffer.c_str();
  }
};

TEST_F(Profile, KeepsWhatWasWritten) {
  ASSERT_TRUE(KVT_WriteUserProfileString("Input", "MapTitle", "My_map \xE0"));
  EXPECT_EQ(Get("MapTitle", "default"), "My_map \xE0");
  ASSERT_TRUE(KVT_WriteUserProfileString("Input", "MapTitle", ""));
  EXPECT_EQ(Get("MapTitle", "default"), "");
}

TEST_F(Profile, GivesTheDefaultWhenNothingIsStored) {
  EXPECT_EQ(Get("NeverWritten", "default"), "default");
  EXPECT_EQ(Get("NeverWritten", nullptr), "");
}

TEST_F(Profile, CutsToTheBuffer) {
  ASSERT_TRUE(KVT_WriteUserProfileString("Input", "Long", std::string(5000, 'a').c_str()));
  EXPECT_EQ(Get("Long", "", 4096), std::string(4095, 'a'));
  EXPECT_EQ(Get("Long", "", 1), "");
  EXPECT_EQ(KVT_GetUserProfileString("Input", "Long", "", nullptr, 10), 0);
}

TEST_F(Profile, KeepsSectionsAndProductsApart) {
  ASSERT_TRUE(KVT_WriteUserProfileString("Input", "Key", "input"));
  ASSERT_TRUE(KVT_WriteUserProfileString("FTP", "Key", "ftp"));
  EXPECT_EQ(Get("Key", ""), "input");
  KVT_SetProfileProduct("Mosaicon Test 2");
  EXPECT_EQ(Get("Key", "none"), "none");
}

}  // namespace
