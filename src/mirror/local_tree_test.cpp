#include "mirror/local_tree.h"

#include <gtest/gtest.h>

#include "files/path_text.h"
#include "files/write_file.h"
#include "support/temporary_folder.h"

namespace mirror {

namespace {

namespace fs = std::filesystem;

class LocalTreeTest : public testing::Test {
 protected:
  void Put(const std::string& name, const std::string& bytes = "x") const {
    const fs::path path = Folder() / files::PathOf(name);
    fs::create_directories(path.parent_path());
    EXPECT_FALSE(files::WriteFile(path, bytes));
  }
  fs::path Folder() const { return m_folder.Path("map"); }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const LocalFile& file : ReadLocalTree(Folder()).files) names.push_back(file.path);
    return names;
  }

  TemporaryFolder m_folder;
};

TEST_F(LocalTreeTest, HasAllFilesAndFolders) {
  Put("b.html", "1234");
  Put("17/0/1.png");
  Put("17/a name ä.png");
  Put(".htaccess");
  fs::create_directory(Folder() / "empty");
  const LocalTree tree = ReadLocalTree(Folder());
  EXPECT_EQ(Names(), (std::vector<std::string>{".htaccess", "17/0/1.png", "17/a name ä.png", "b.html"}));
  EXPECT_EQ(tree.folders, (std::vector<std::string>{"17", "17/0", "empty"}));
  EXPECT_EQ(tree.problems, std::vector<std::string>());
  EXPECT_EQ(tree.files[3].state.size, 4U);
  EXPECT_EQ(tree.files[3].state, StateOf(Folder() / "b.html"));
  EXPECT_EQ(ReadFile(tree.files[3].source.string()), "1234");
}

TEST_F(LocalTreeTest, LeavesOutWhatARunHasLeft) {
  Put("17/0/1.png.~mos");
  Put("a");
  EXPECT_EQ(Names(), std::vector<std::string>{"a"});
  EXPECT_EQ(ReadLocalTree(Folder()).problems.size(), 0U);
}

TEST_F(LocalTreeTest, TellsOfAMapThatIsNotFinished) {
  Put("tile_0/.mosaicon-tiles-1-of-3");
  Put(".mosaicon-tiles");
  EXPECT_EQ(ReadLocalTree(Folder()).problems,
            (std::vector<std::string>{".mosaicon-tiles: the map is not finished; make it again",
                                      "tile_0: the map is not finished; make it again"}));
}

TEST_F(LocalTreeTest, TellsOfNamesThatCannotBe) {
  Put("a.png.~new");
  EXPECT_EQ(ReadLocalTree(Folder()).problems,
            std::vector<std::string>{"a.png.~new: a file of this name cannot be published"});
}

TEST_F(LocalTreeTest, TellsOfAFolderThatIsMissing) {
  const LocalTree tree = ReadLocalTree(Folder());
  ASSERT_EQ(tree.problems.size(), 1U);
  EXPECT_TRUE(tree.problems[0].starts_with(files::Utf8Of(Folder()) + ": ")) << tree.problems[0];
}

TEST(FileState, IsThatOfAFileOnly) {
  const TemporaryFolder folder;
  EXPECT_EQ(StateOf(folder.Path()), std::nullopt);
  EXPECT_EQ(StateOf(folder.Path("missing")), std::nullopt);
}

#ifndef _WIN32
TEST_F(LocalTreeTest, FollowsLinksToFilesOnly) {
  Put("a", "12");
  fs::create_symlink("a", Folder() / "b");
  fs::create_directory_symlink(".", Folder() / "circle");
  fs::create_symlink("nowhere", Folder() / "lost");
  EXPECT_EQ(Names(), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(ReadLocalTree(Folder()).problems, (std::vector<std::string>{"circle: it is a link to a folder",
                                                                        "lost: No such file or directory"}));
}
#endif

}  // namespace

}  // namespace mirror
