// What only POSIX's files have. What all have in common: file_system_test.cpp.
#include <gtest/gtest.h>

#include "files/testing/places.h"

namespace {

class FilesOfPosix : public testing::Test {
 protected:
  std::string Path(const std::string& name = "") const { return m_place.Path(name); }
  void LinkSymbolically(const std::string& name, const std::string& target) {
    std::filesystem::create_symlink(target, Path(name));
  }

  PlaceOnDisk m_place;
  FileSystem& m_files = m_place.Files();
};

TEST_F(FilesOfPosix, AreWhatALinkLeadsTo) {
  m_place.Put(Path("file"), "bytes");
  ASSERT_TRUE(m_files.CreateFolder(Path("folder")));
  LinkSymbolically("to file", "file");
  LinkSymbolically("to folder", "folder");
  EXPECT_FALSE(m_files.IsFolder(Path("to file")));
  EXPECT_TRUE(m_files.IsFolder(Path("to folder")));
  EXPECT_EQ(m_files.Identity(Path("to file")), m_files.Identity(Path("file")));
  EXPECT_EQ(m_files.Identity(Path("to folder")), m_files.Identity(Path("folder")));
  for (const FoundFile& found : FindFiles(m_files, Path("to *"))) {
    EXPECT_EQ(found.isDirectory, found.name == "to folder");
  }
  EXPECT_FALSE(m_files.Delete(Path("folder")));
  EXPECT_TRUE(m_files.Delete(Path("to folder"))) << "the link, not what it leads to";
  EXPECT_TRUE(m_files.Delete(Path("to file")));
  EXPECT_TRUE(m_files.IsFolder(Path("folder")));
  EXPECT_EQ(m_files.Read(Path("file"), 9), "bytes");
}

TEST_F(FilesOfPosix, DoNotComeToBeByALinkToNothing) {
  LinkSymbolically("link", "none");
  EXPECT_TRUE(m_files.Exists(Path("link")));
  EXPECT_FALSE(m_files.IsFolder(Path("link")));
  EXPECT_EQ(m_files.Identity(Path("link")), "");
  EXPECT_EQ(m_files.Read(Path("link"), 9), std::nullopt);
  m_place.Put(Path("file"), "x");
  EXPECT_FALSE(m_files.Rename(Path("file"), Path("link")));
  EXPECT_TRUE(m_files.Delete(Path("link")));
}

// A path with a backslash leads elsewhere.
TEST_F(FilesOfPosix, AreNotFoundWhenNoPathLeadsToThem) {
  WriteFile(Path("a\\b"), "x");
  ASSERT_TRUE(m_files.CreateFolder(Path("a")));
  EXPECT_FALSE(m_files.Exists(Path("a\\b")));
  const std::vector<FoundFile> found = FindFiles(m_files, Path("*"));
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].name, "a");
}

TEST_F(FilesOfPosix, MayBeDeletedAndRenamedWhileInUse) {
  for (const char* name : {"a", "b"}) {
    m_place.Put(Path(name), "x");
    m_place.Use(Path(name));
  }
  EXPECT_TRUE(m_files.Delete(Path("b")));
  EXPECT_TRUE(m_files.Rename(Path("a"), Path("c")));
}

TEST_F(FilesOfPosix, HaveAFullPathWithSlashes) {
  EXPECT_EQ(m_files.FullPath("\\a\\..\\b/c"), "/b/c");
  EXPECT_EQ(m_files.FullPath("/."), "/");
  EXPECT_EQ(m_files.FullPath("\\"), "/");
}

}  // namespace
