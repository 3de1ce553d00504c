#include "publish/remote_names.h"

#include <gtest/gtest.h>

namespace {

TEST(RemoteNames, TakesWhatStaysInItsFolder) {
  for (const char* name :
       {"a", "tile_0", "a b.png", ".htaccess", "...", "..a", "a..", "caf\xE9", "a;b", "a -> b", "*", "-r"}) {
    EXPECT_TRUE(IsPlainRemoteName(name)) << name;
  }
}

TEST(RemoteNames, RefusesWhatLeavesItOrIsNoName) {
  for (const std::string& name :
       {std::string(), std::string("."), std::string(".."), std::string("/"), std::string("/etc"),
        std::string("a/b"), std::string("../a"), std::string("a/.."), std::string("a\\b"), std::string("\\"),
        std::string("a\r"), std::string("a\nb"), std::string("\x1B[0m"), std::string("a\tb"),
        std::string("\x7F"), std::string("a\0b", 3)}) {
    EXPECT_FALSE(IsPlainRemoteName(name)) << name;
  }
}

TEST(RemoteNames, MeanNobodysHomeFolder) {
  EXPECT_EQ(RemotePath("~"), "./~");
  EXPECT_EQ(RemotePath("~root"), "./~root");
  EXPECT_EQ(RemotePath("a~"), "a~");
  EXPECT_EQ(RemotePath("a b"), "a b");
}

TEST(RemoteNames, WritesBlanksOfFoldersAsUnderscores) {
  EXPECT_EQ(RemoteFolderName("my ortho"), "my_ortho");
  EXPECT_EQ(RemoteFolderName("  a  "), "__a__");
  EXPECT_EQ(RemoteFolderName("plain"), "plain");
}

}  // namespace
