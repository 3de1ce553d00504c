// What file systems do in the manner of Windows: the one in memory everywhere, and Windows' own.
#include <gtest/gtest.h>

#include "files/testing/places.h"

namespace {

template <typename Place>
class WindowsFiles : public testing::Test {
 protected:
  std::string Path(const std::string& name = "") const { return m_place.Path(name); }

  Place m_place;
  FileSystem& m_files = m_place.Files();
};

#ifdef _WIN32
using Places = testing::Types<PlaceOnDisk, PlaceInMemory>;
#else
using Places = testing::Types<PlaceInMemory>;
#endif
TYPED_TEST_SUITE(WindowsFiles, Places);

TYPED_TEST(WindowsFiles, HaveNamesWithoutRegardToCase) {
  this->m_place.Put(this->Path("A Long Name.tif"), "x");
  const std::string other = this->Path("a long NAME.TIF");
  EXPECT_TRUE(this->m_files.Exists(other));
  EXPECT_EQ(this->m_files.Identity(other), this->m_files.Identity(this->Path("A Long Name.tif")));
  EXPECT_EQ(this->m_files.Read(other, 9), "x");
  const std::vector<FoundFile> found = FindFiles(this->m_files, other);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].name, "A Long Name.tif");
  EXPECT_TRUE(this->m_files.Rename(this->Path("A Long Name.tif"), this->Path("b")));
  EXPECT_FALSE(this->m_files.Exists(other));
}

TYPED_TEST(WindowsFiles, HaveOneFullPathWithItsDrive) {
  EXPECT_EQ(this->m_files.FullPath("C:\\a\\..\\b/c"), "C:\\b\\c");
  EXPECT_EQ(this->m_files.FullPath("C:\\."), "C:\\");
  EXPECT_EQ(this->m_files.FullPath("C:\\\\"), "C:\\");
  EXPECT_EQ(this->m_files.FullPath("C:\\..\\.."), "C:\\");
  EXPECT_EQ(this->m_files.FullPath("C:/a\\"), "C:\\a\\");
  EXPECT_EQ(this->m_files.FullPath("\\\\server\\share\\a b"), "\\\\server\\share\\a b");
  this->m_place.ChangeIntoFolder();
  const std::string drive = this->Path().substr(0, 2);
  EXPECT_EQ(this->m_files.FullPath("\\a"), drive + "\\a");
  EXPECT_EQ(this->m_files.FullPath(drive + "a"), this->Path("a"));
  this->m_place.ChangeBack();
}

TYPED_TEST(WindowsFiles, AreNeitherDeletedNorRenamedWhileInUse) {
  this->m_place.Put(this->Path("file"), "bytes");
  this->m_place.Use(this->Path("file"));
  EXPECT_FALSE(this->m_files.Delete(this->Path("file")));
  EXPECT_FALSE(this->m_files.Rename(this->Path("file"), this->Path("other")));
  EXPECT_EQ(this->m_files.Read(this->Path("file"), 9), "bytes");
}

}  // namespace
