// What every file system does alike: that of Windows or that of POSIX, whichever this is built for, and the
// one in memory.
#include "files/file_system.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "files/testing/places.h"

namespace {

using Names = std::vector<std::string>;

template <typename Place>
class Files : public testing::Test {
 protected:
  std::string Path(const std::string& name = "") const { return m_place.Path(name); }
  void Put(const std::string& name, const std::string& bytes = "x") { m_place.Put(Path(name), bytes); }
  std::string BytesOf(const std::string& name) { return m_files.Read(Path(name), 1000).value_or("(none)"); }
  // Sorted, because the order is the system's.
  Names Find(const std::string& pattern) {
    std::vector<FoundFile> found(1);
    EXPECT_TRUE(m_files.Find(Path(pattern), found)) << pattern;
    return NamesOf(found);
  }
  Names NamesOf(const std::vector<FoundFile>& found) {
    Names names;
    for (const FoundFile& file : found) {
      EXPECT_EQ(file.path, Path(file.name));
      EXPECT_EQ(file.isDirectory, m_files.IsFolder(file.path)) << file.name;
      names.push_back(file.name);
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  // Of paths that lead to nothing.
  Names Nothings() const {
    return {"",
            Path("none"),
            Path("none\\file"),
            Path("file\\none"),
            Path("*"),
            Path("*.tif"),
            Path("f?le"),
            Path(std::string(300, 'x')),
            Path("?????.tif"),
            std::string(5000, 'x')};
  }

  Place m_place;
  FileSystem& m_files = m_place.Files();
};

using Places = testing::Types<PlaceOnDisk, PlaceInMemory>;
TYPED_TEST_SUITE(Files, Places);

TYPED_TEST(Files, ExistOnlyUnderTheirExactPath) {
  this->Put("file");
  this->Put("a.tif");
  EXPECT_TRUE(this->m_files.Exists(this->Path("file")));
  EXPECT_TRUE(this->m_files.Exists(this->Path()));
  EXPECT_TRUE(this->m_files.Exists(this->Path() + "\\"));
  EXPECT_TRUE(this->m_files.Exists(this->Path() + "/file"));
  EXPECT_TRUE(this->m_files.Exists(this->Path(".\\a.tif")));
  for (const std::string& path : this->Nothings()) EXPECT_FALSE(this->m_files.Exists(path)) << path;
}

TYPED_TEST(Files, AreNoFolders) {
  this->Put("file");
  EXPECT_TRUE(this->m_files.IsFolder(this->Path()));
  EXPECT_TRUE(this->m_files.IsFolder(this->Path() + "\\"));
  EXPECT_TRUE(this->m_files.IsFolder(this->Path() + "/"));
  EXPECT_FALSE(this->m_files.IsFolder(this->Path("file")));
  for (const std::string& path : this->Nothings()) EXPECT_FALSE(this->m_files.IsFolder(path)) << path;
}

TYPED_TEST(Files, AreFoundByPatternWithoutRegardToCase) {
  for (const char* name : {"a.tif", "B.TIF", "b.jpg", "tif"}) this->Put(name);
  ASSERT_TRUE(this->m_files.CreateFolder(this->Path("e.tif")));
  EXPECT_EQ(this->Find("*.tif"), (Names{"B.TIF", "a.tif", "e.tif"}));
  EXPECT_EQ(this->Find("b.*"), (Names{"B.TIF", "b.jpg"}));
  EXPECT_EQ(this->Find("?.jpg"), Names{"b.jpg"});
  EXPECT_EQ(this->Find("a.tif"), Names{"a.tif"});
  EXPECT_EQ(this->Find("none.tif"), Names{}) << "nothing matches, which is no failure";
}

TYPED_TEST(Files, AreAllFoundSaveForTheTwoThatAreEverywhere) {
  EXPECT_EQ(this->Find("*.*"), Names{});
  for (const char* name : {"a.txt", "no extension", ".begins with a dot"}) this->Put(name);
  ASSERT_TRUE(this->m_files.CreateFolder(this->Path("folder.d")));
  this->Put("folder.d\\deeper");
  const Names all = {".begins with a dot", "a.txt", "folder.d", "no extension"};
  EXPECT_EQ(this->Find("*.*"), all);
  EXPECT_EQ(this->Find("*"), all);
}

TYPED_TEST(Files, AreFoundBelowTheFolderAsItIsWritten) {
  this->Put("a.tif");
  for (const std::string& folder : {this->Path() + "/", this->Path() + "/./"}) {
    const std::vector<FoundFile> found = FindFiles(this->m_files, folder + "*.tif");
    ASSERT_EQ(found.size(), 1U) << folder;
    EXPECT_EQ(found[0].path, folder + "a.tif");
  }
}

TYPED_TEST(Files, CannotBeSearchedWhereNoFolderIs) {
  this->Put("file");
  for (const std::string& folder :
       {this->Path("none"), this->Path("file"), this->Path(std::string(300, 'x'))}) {
    std::vector<FoundFile> found(1);
    EXPECT_FALSE(this->m_files.Find(folder + "\\*.*", found)) << folder;
    EXPECT_TRUE(found.empty()) << folder;
    EXPECT_TRUE(FindFiles(this->m_files, folder + "\\*.*").empty()) << folder;
  }
}

TYPED_TEST(Files, AreReadUpToALimit) {
  const std::string bytes("x\r\n\0\x1Ay", 6);
  this->Put("a", bytes);
  EXPECT_EQ(this->m_files.Read(this->Path("a"), 6), bytes);
  EXPECT_EQ(this->m_files.Read(this->Path("a"), 5), std::nullopt);
  this->Put("empty", "");
  EXPECT_EQ(this->m_files.Read(this->Path("empty"), 5), "");
  EXPECT_EQ(this->m_files.Read(this->Path("empty"), 0), "");
  EXPECT_EQ(this->m_files.Read(this->Path(), 5), std::nullopt) << "a folder";
  for (const std::string& path : this->Nothings()) {
    EXPECT_EQ(this->m_files.Read(path, 5), std::nullopt) << path;
  }
}

TYPED_TEST(Files, TellWhenTheyWereWrittenAnew) {
  this->Put("a");
  const auto before = this->m_files.WriteTime(this->Path("a"));
  EXPECT_NE(before, std::nullopt);
  EXPECT_EQ(this->m_files.Read(this->Path("a"), 9), "x");
  EXPECT_EQ(this->m_files.WriteTime(this->Path("a")), before);
  this->m_place.PutLater(this->Path("a"), "x");
  EXPECT_GT(this->m_files.WriteTime(this->Path("a")), before);
  for (const std::string& path : this->Nothings()) {
    EXPECT_EQ(this->m_files.WriteTime(path), std::nullopt) << path;
  }
}

TYPED_TEST(Files, HaveOneFullPath) {
  const std::string path = this->Path("b");
  EXPECT_EQ(this->m_files.FullPath(path), path);
  EXPECT_EQ(this->m_files.FullPath(this->Path("a\\..\\.\\/b")), path);
  EXPECT_EQ(this->m_files.FullPath(path + "\\."), path);
  EXPECT_EQ(this->m_files.FullPath(path + "\\c\\.."), path);
  const std::string separated = this->m_files.FullPath(path + "\\");
  EXPECT_EQ(separated.substr(0, separated.size() - 1), path) << "keeps a separator at its end";
  EXPECT_EQ(this->m_files.FullPath(""), "");
  const std::string tooLong(5000, 'x');
  EXPECT_EQ(this->m_files.FullPath(tooLong), tooLong);
}

TYPED_TEST(Files, HaveAFullPathFromTheCurrentFolderOn) {
  this->m_place.ChangeIntoFolder();
  EXPECT_EQ(this->m_files.FullPath("maps"), this->Path("maps"));
  EXPECT_EQ(this->m_files.FullPath("maps/../b"), this->Path("b"));
  EXPECT_EQ(this->m_files.FullPath("."), this->Path());
  EXPECT_EQ(this->m_files.FullPath("..\\" + this->Path().substr(this->Path().find_last_of("\\/") + 1)),
            this->Path());
  this->Put("file");
  EXPECT_TRUE(this->m_files.Exists("file"));
  EXPECT_EQ(FindFiles(this->m_files, "*.*").size(), 1U);
  this->m_place.ChangeBack();
}

TYPED_TEST(Files, HaveOneIdentityWhateverPathLeadsToThem) {
  this->Put("file", "same");
  this->Put("other", "same");
  this->m_place.Link(this->Path("link"), this->Path("file"));
  const std::string identity = this->m_files.Identity(this->Path("file"));
  EXPECT_NE(identity, "");
  EXPECT_NE(identity, this->m_files.Identity(this->Path("other")));
  EXPECT_NE(identity, this->m_files.Identity(this->Path()));
  EXPECT_EQ(identity, this->m_files.Identity(this->Path(".\\file")));
  EXPECT_EQ(identity, this->m_files.Identity(this->Path() + "//file"));
  EXPECT_EQ(identity, this->m_files.Identity(this->Path("link")));
  EXPECT_EQ(this->m_files.Identity(this->Path()), this->m_files.Identity(this->Path() + "\\"));
  for (const std::string& path : this->Nothings()) EXPECT_EQ(this->m_files.Identity(path), "") << path;
}

TYPED_TEST(Files, KeepTheirIdentityWhenTheyChange) {
  this->Put("file", "before");
  const std::string identity = this->m_files.Identity(this->Path("file"));
  this->Put("file", "longer than before");
  EXPECT_EQ(this->m_files.Identity(this->Path("file")), identity);
}

TYPED_TEST(Files, AreTheSameWhenTheyHaveOneIdentity) {
  this->Put("file");
  this->Put("other");
  this->m_place.Link(this->Path("link"), this->Path("file"));
  EXPECT_TRUE(IsSameFile(this->m_files, this->Path("file"), this->Path("link")));
  EXPECT_FALSE(IsSameFile(this->m_files, this->Path("file"), this->Path("other")));
  EXPECT_FALSE(IsSameFile(this->m_files, this->Path("none"), this->Path("none")));
  EXPECT_FALSE(IsSameFile(this->m_files, this->Path("file"), this->Path("none")));
}

TYPED_TEST(Files, LieInFoldersThatAreMadeOneLevelAtATime) {
  this->Put("file");
  EXPECT_TRUE(this->m_files.CreateFolder(this->Path("a")));
  EXPECT_TRUE(this->m_files.IsFolder(this->Path("a")));
  EXPECT_TRUE(this->m_files.CreateFolder(this->Path("a"))) << "exists already";
  EXPECT_TRUE(this->m_files.CreateFolder(this->Path("a\\b\\")));
  EXPECT_TRUE(this->m_files.IsFolder(this->Path("a\\b")));
  EXPECT_FALSE(this->m_files.CreateFolder(this->Path("c\\d")));
  EXPECT_FALSE(this->m_files.Exists(this->Path("c")));
  EXPECT_FALSE(this->m_files.CreateFolder(this->Path("file\\d")));
  EXPECT_FALSE(this->m_files.CreateFolder(this->Path(std::string(300, 'x'))));
  EXPECT_FALSE(this->m_files.CreateFolder(""));
}

// "Exists already" is no failure, whatever it is.
TYPED_TEST(Files, CountAsAFolderThatExistsAlready) {
  this->Put("file");
  EXPECT_TRUE(this->m_files.CreateFolder(this->Path("file")));
  EXPECT_FALSE(this->m_files.IsFolder(this->Path("file")));
}

TYPED_TEST(Files, AreDeleted) {
  this->Put("file");
  this->Put("a.tif");
  ASSERT_TRUE(this->m_files.CreateFolder(this->Path("folder")));
  EXPECT_FALSE(this->m_files.Delete(this->Path("folder")));
  for (const std::string& path : this->Nothings()) EXPECT_FALSE(this->m_files.Delete(path)) << path;
  EXPECT_EQ(this->Find("*.*"), (Names{"a.tif", "file", "folder"}));
  EXPECT_TRUE(this->m_files.Delete(this->Path("file")));
  EXPECT_EQ(this->Find("*.*"), (Names{"a.tif", "folder"}));
}

TYPED_TEST(Files, AreNotDeletedByTheirLinks) {
  this->Put("file", "bytes");
  this->m_place.Link(this->Path("link"), this->Path("file"));
  EXPECT_TRUE(this->m_files.Delete(this->Path("link")));
  EXPECT_EQ(this->BytesOf("file"), "bytes");
}

TYPED_TEST(Files, AreNeitherDeletedNorWrittenOverWhenReadOnly) {
  this->Put("file", "bytes");
  this->Put("other");
  this->m_place.SetReadOnly(this->Path("file"), true);
  EXPECT_FALSE(this->m_files.Delete(this->Path("file")));
  EXPECT_FALSE(this->m_files.Copy(this->Path("other"), this->Path("file")));
  EXPECT_EQ(this->BytesOf("file"), "bytes");
  EXPECT_TRUE(this->m_files.Copy(this->Path("file"), this->Path("copy")));
  EXPECT_TRUE(this->m_files.Rename(this->Path("file"), this->Path("renamed")));
  EXPECT_FALSE(this->m_files.Delete(this->Path("renamed"))) << "still read-only";
  for (const char* name : {"copy", "renamed"}) this->m_place.SetReadOnly(this->Path(name), false);
  EXPECT_TRUE(this->m_files.Delete(this->Path("renamed")));
}

TYPED_TEST(Files, AreRenamedOnlyToAFreeName) {
  this->Put("a", "a");
  this->Put("b", "b");
  ASSERT_TRUE(this->m_files.CreateFolder(this->Path("folder")));
  EXPECT_FALSE(this->m_files.Rename(this->Path("a"), this->Path("b")));
  EXPECT_FALSE(this->m_files.Rename(this->Path("a"), this->Path("folder")));
  EXPECT_FALSE(this->m_files.Rename(this->Path("a"), this->Path("none\\a")));
  EXPECT_FALSE(this->m_files.Rename(this->Path("a"), this->Path(std::string(300, 'x'))));
  for (const std::string& path : this->Nothings()) {
    EXPECT_FALSE(this->m_files.Rename(path, this->Path("d"))) << path;
  }
  EXPECT_EQ(this->BytesOf("b"), "b");
  EXPECT_TRUE(this->m_files.Rename(this->Path("a"), this->Path("folder\\c")));
  EXPECT_EQ(this->BytesOf("folder\\c"), "a");
  EXPECT_FALSE(this->m_files.Exists(this->Path("a")));
}

TYPED_TEST(Files, GoWithAFolderThatIsRenamed) {
  ASSERT_TRUE(this->m_files.CreateFolder(this->Path("folder")));
  this->Put("folder\\a", "a");
  EXPECT_TRUE(this->m_files.Rename(this->Path("folder"), this->Path("other")));
  EXPECT_EQ(this->BytesOf("other\\a"), "a");
  EXPECT_FALSE(this->m_files.Exists(this->Path("folder")));
}

TYPED_TEST(Files, AreCopiedOverExistingOnes) {
  this->Put("a", "a");
  this->Put("b", "longer than a");
  EXPECT_TRUE(this->m_files.Copy(this->Path("a"), this->Path("b")));
  EXPECT_EQ(this->BytesOf("b"), "a");
  EXPECT_TRUE(this->m_files.Copy(this->Path("a"), this->Path("c")));
  EXPECT_EQ(this->BytesOf("c"), "a");
  EXPECT_EQ(this->BytesOf("a"), "a");
}

TYPED_TEST(Files, AreNotCopiedWhereTheyCannotBe) {
  this->Put("a", "a");
  ASSERT_TRUE(this->m_files.CreateFolder(this->Path("folder")));
  EXPECT_FALSE(this->m_files.Copy(this->Path("a"), this->Path("folder")));
  EXPECT_FALSE(this->m_files.Copy(this->Path("folder"), this->Path("copy")));
  EXPECT_FALSE(this->m_files.Copy(this->Path("a"), this->Path("none\\a")));
  EXPECT_FALSE(this->m_files.Copy(this->Path("a"), this->Path(std::string(300, 'x'))));
  EXPECT_FALSE(this->m_files.Copy(this->Path("a"), this->Path("a"))) << "onto itself";
  EXPECT_EQ(this->BytesOf("a"), "a");
  for (const std::string& path : this->Nothings()) {
    EXPECT_FALSE(this->m_files.Copy(path, this->Path("c"))) << path;
  }
  EXPECT_EQ(this->Find("*.*"), (Names{"a", "folder"}));
}

}  // namespace
