#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it needs.
#include <shlobj.h>

#include "kvtools/kvtools.h"

namespace {

TEST(SpecialFolder, IsThereAndHasNoBackslashAtItsEnd) {
  for (int csidl : {CSIDL_COMMON_APPDATA, CSIDL_APPDATA, CSIDL_PERSONAL}) {
    const std::string path = KVT_GetSpecialFolder(csidl);
    ASSERT_FALSE(path.empty()) << csidl;
    EXPECT_NE(path.back(), '\\') << path;
    const DWORD attributes = GetFileAttributesA(path.c_str());
    ASSERT_NE(attributes, INVALID_FILE_ATTRIBUTES) << path;
    EXPECT_TRUE((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) << path;
  }
}

TEST(SpecialFolder, IsTheOneAllUsersShare) {
  char allUsers[MAX_PATH];
  const DWORD length = GetEnvironmentVariableA("ProgramData", allUsers, sizeof allUsers);
  ASSERT_TRUE(length > 0 && length < sizeof allUsers);
  EXPECT_EQ(KVT_GetSpecialFolder(35), allUsers);
}

TEST(SpecialFolder, IsMadeWhenItIsMissing) {
  const std::string path = KVT_GetSpecialFolder(CSIDL_CDBURN_AREA);
  ASSERT_FALSE(path.empty());
  // The stage for burning discs is empty but for the moment before that. Only an empty one can be removed.
  const bool removed = RemoveDirectoryA(path.c_str()) != FALSE;
  ASSERT_TRUE(removed) << path << ", " << GetLastError();
  EXPECT_EQ(KVT_GetSpecialFolder(CSIDL_CDBURN_AREA), path);
  EXPECT_NE(GetFileAttributesA(path.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST(SpecialFolder, IsEmptyWhenThereIsNone) {
  EXPECT_EQ(KVT_GetSpecialFolder(250), "");
  EXPECT_EQ(KVT_GetSpecialFolder(-1), "");
  // The network neighbourhood is no folder of the file system.
  EXPECT_EQ(KVT_GetSpecialFolder(CSIDL_NETWORK), "");
}

}  // namespace
