#include <gtest/gtest.h>

#include <filesystem>

#include "kvtools/kvtools.h"
#include "support/temporary_folder.h"

namespace {

class FileCount : public testing::Test {
 protected:
  void MakeFolder(const std::string& name) {
    ASSERT_TRUE(std::filesystem::create_directory(m_folder.Path(name))) << name;
  }
  void MakeFiles(const std::vector<std::string>& names) {
    for (const std::string& name : names) WriteFile(m_folder.Path(name), "x");
  }
  TemporaryFolder m_folder;
};

TEST_F(FileCount, GoesThroughSubfoldersWhenAsked) {
  MakeFolder("a");
  MakeFolder("a/b");
  MakeFolder("empty");
  MakeFiles({"1.txt", ".2", "a/3.png", "a/b/4.png", "a/b/caf\xE9 5.png"});
  EXPECT_EQ(KVT_CountFileInFolder(m_folder.Path(), 1), 5);
  EXPECT_EQ(KVT_CountFileInFolder(m_folder.Path(), 0), 2);
  EXPECT_EQ(KVT_CountFileInFolder(m_folder.Path("a"), 1), 3);
}

TEST_F(FileCount, IsTheSameHoweverTheFolderIsWritten) {
  MakeFolder("a");
  MakeFiles({"a/1.txt"});
  const std::string path = m_folder.Path("a");
  for (const std::string& text : {path, path + "\\", path + "/", path + "\\\\"}) {
    EXPECT_EQ(KVT_CountFileInFolder(text, 1), 1) << text;
  }
}

TEST_F(FileCount, IsZeroForWhatIsNoFolder) {
  MakeFiles({"file"});
  for (const std::string& path :
       {m_folder.Path("none"), m_folder.Path("file"), m_folder.Path(std::string(300, 'x')), std::string()}) {
    EXPECT_EQ(KVT_CountFileInFolder(path, 1), 0) << path;
  }
}

// One that goes away before its turn is one that cannot be read.
TEST_F(FileCount, TakesAFolderThatCannotBeReadForAFile) {
  MakeFolder("a");
  MakeFolder("b");
  MakeFiles({"1.txt", "a/2.txt"});
  EXPECT_EQ(KVT_CountFileInFolder(m_folder.Path(), 1), 2);
  int folders = 0;
  const auto loseB = [&] {
    if (++folders == 2) std::filesystem::remove(m_folder.Path("b"));
    return true;
  };
  EXPECT_EQ(KVT_CountFileInFolder(m_folder.Path(), 1, loseB), 3);
}

TEST_F(FileCount, AsksBeforeEachFolderWhetherToGoOn) {
  MakeFolder("a");
  MakeFolder("a/b");
  MakeFiles({"1", "a/2", "a/b/3"});
  int folders = 0;
  EXPECT_EQ(KVT_CountFileInFolder(m_folder.Path(), 1, [&] { return ++folders > 0; }), 3);
  EXPECT_EQ(folders, 3);
  // How many come before the end is a question of the system's order.
  EXPECT_LT(KVT_CountFileInFolder(m_folder.Path(), 1, [&] { return --folders > 0; }), 3);
  EXPECT_EQ(folders, 0);
  EXPECT_EQ(KVT_CountFileInFolder(m_folder.Path(), 1, [] { return false; }), 0);
}

}  // namespace
