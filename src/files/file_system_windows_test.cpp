// What only Windows' files have. What all have in common: file_system_test.cpp.
#include <gtest/gtest.h>
#include <windows.h>

#include "files/testing/places.h"

namespace {

class FilesOfWindows : public testing::Test {
 protected:
  PlaceOnDisk m_place;
  FileSystem& m_files = m_place.Files();
};

TEST_F(FilesOfWindows, AreFoundWhenHiddenOrAccented) {
  m_place.Put(m_place.Path("caf\xE9.png"), "x");
  m_place.Put(m_place.Path("hidden"), "x");
  ASSERT_TRUE(SetFileAttributesA(m_place.Path("hidden").c_str(), FILE_ATTRIBUTE_HIDDEN));
  EXPECT_EQ(FindFiles(m_files, m_place.Path("*.*")).size(), 2U);
  EXPECT_TRUE(m_files.Exists(m_place.Path("caf\xE9.png")));
  EXPECT_TRUE(m_files.Exists(m_place.Path("CAF\xC9.png")));
}

TEST_F(FilesOfWindows, HaveTheIdentityOfTheirShortNames) {
  const std::string path = m_place.Path("a long name.tif");
  m_place.Put(path, "x");
  char shortPath[MAX_PATH];
  ASSERT_GT(GetShortPathNameA(path.c_str(), shortPath, MAX_PATH), 0U);
  ASSERT_NE(path, shortPath);
  EXPECT_EQ(m_files.Identity(shortPath), m_files.Identity(path));
  EXPECT_EQ(m_files.Identity(m_place.Path("none\\..\\.\\a long name.tif")), m_files.Identity(path));
}

TEST_F(FilesOfWindows, AreOfferedInAFolderThatIsTheRootOfADrive) {
  EXPECT_TRUE(m_files.IsFolder("C:\\"));
  EXPECT_TRUE(m_files.Exists("C:\\"));
  EXPECT_FALSE(FindFiles(m_files, "C:\\*.*").empty());
}

}  // namespace
