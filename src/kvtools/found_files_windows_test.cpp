#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

#include "kvtools/found_files.h"
#include "support/temporary_folder.h"

namespace {

using Names = std::vector<std::string>;

class FoundFiles : public testing::Test {
 protected:
  // Sorted, because the order is the file system's.
  Names Find(const std::string& pattern) {
    EXPECT_TRUE(FindFiles(m_folder.Path(pattern), m_found)) << pattern;
    Names names;
    for (const FoundFile& file : m_found) {
      EXPECT_EQ(file.path, m_folder.Path(file.name));
      names.push_back(file.name);
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  TemporaryFolder m_folder;
  std::vector<FoundFile> m_found;
};

TEST_F(FoundFiles, LeaveOutNothing) {
  WriteFile(m_folder.Path("a.txt"), "x");
  WriteFile(m_folder.Path("no extension"), "x");
  WriteFile(m_folder.Path("caf\xE9.png"), "x");
  WriteFile(m_folder.Path("hidden"), "x");
  ASSERT_TRUE(SetFileAttributesA(m_folder.Path("hidden").c_str(), FILE_ATTRIBUTE_HIDDEN));
  ASSERT_TRUE(CreateDirectoryA(m_folder.Path("folder.d").c_str(), nullptr));
  EXPECT_EQ(Find("*.*"), (Names{".", "..", "a.txt", "caf\xE9.png", "folder.d", "hidden", "no extension"}));
  for (const FoundFile& file : m_found) {
    const bool isFolder = file.name == "." || file.name == ".." || file.name == "folder.d";
    EXPECT_EQ(file.isDirectory, isFolder) << file.name;
  }
}

TEST_F(FoundFiles, AreEmptiedBeforeTheSearch) {
  WriteFile(m_folder.Path("a.txt"), "x");
  EXPECT_EQ(Find("a.txt"), Names{"a.txt"});
  EXPECT_EQ(Find("none.txt"), Names{}) << "nothing matches, which is no failure";
}

TEST_F(FoundFiles, TellFoldersFromEverythingElse) {
  WriteFile(m_folder.Path("file"), "x");
  EXPECT_TRUE(IsFolder(m_folder.Path()));
  EXPECT_TRUE(IsFolder(m_folder.Path() + "\\"));
  EXPECT_FALSE(IsFolder(m_folder.Path("file")));
  EXPECT_FALSE(IsFolder(m_folder.Path("none")));
  EXPECT_FALSE(IsFolder(m_folder.Path(std::string(300, 'x'))));
  EXPECT_FALSE(IsFolder(m_folder.Path("?????.tif"))) << "a name that the code page cannot express";
  EXPECT_FALSE(IsFolder(""));
}

TEST_F(FoundFiles, TellThatTheSearchFailed) {
  WriteFile(m_folder.Path("file"), "x");
  for (const std::string& pattern : {m_folder.Path("none\\*.*"), m_folder.Path("file\\*.*"),
                                     m_folder.Path(std::string(300, 'x') + "\\*.*")}) {
    m_found.resize(1);
    EXPECT_FALSE(FindFiles(pattern, m_found)) << pattern;
    EXPECT_TRUE(m_found.empty()) << pattern;
  }
}

}  // namespace
