#include "job/windows_files.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

#include "job/tool_paths.h"
#include "support/fakes.h"
#include "support/temporary_folder.h"

namespace {

class Files : public testing::Test {
 protected:
  std::vector<std::string> FindNames(const std::string& pattern) {
    std::vector<std::string> names;
    for (const FoundFile& file : m_files.Find(m_folder.Path(pattern))) {
      EXPECT_EQ(file.path, m_folder.Path(file.name));
      names.push_back(file.name);
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  using Names = std::vector<std::string>;

  TemporaryFolder m_folder;
  WindowsFiles m_files;
};

TEST_F(Files, AreFoundByPatternWithoutRegardToCase) {
  for (const char* name : {"a.tif", "B.TIF", "c.tiff", "d.jpg"}) WriteFile(m_folder.Path(name), "x");
  ASSERT_TRUE(m_files.CreateFolder(m_folder.Path("e.tif")));
  const Names names = FindNames("*.tif");
  EXPECT_TRUE(std::find(names.begin(), names.end(), "a.tif") != names.end());
  EXPECT_TRUE(std::find(names.begin(), names.end(), "B.TIF") != names.end());
  EXPECT_TRUE(std::find(names.begin(), names.end(), "e.tif") != names.end());
  EXPECT_TRUE(std::find(names.begin(), names.end(), "d.jpg") == names.end());
  for (const FoundFile& file : m_files.Find(m_folder.Path("*.tif"))) {
    EXPECT_EQ(file.isDirectory, file.name == "e.tif");
  }
}

TEST_F(Files, AreNotFoundInAMissingFolder) {
  EXPECT_EQ(FindNames("none\\*.*"), Names{});
  EXPECT_EQ(FindNames("*.*"), Names{});
}

TEST_F(Files, HaveOneFullPath) {
  EXPECT_EQ(m_files.FullPath("C:\\a\\..\\b/c"), "C:\\b\\c");
  EXPECT_EQ(m_files.FullPath("C:\\."), "C:\\");
  EXPECT_EQ(m_files.FullPath("C:\\\\"), "C:\\");
  EXPECT_EQ(m_files.FullPath("\\\\server\\share\\a b"), "\\\\server\\share\\a b");
  EXPECT_EQ(m_files.FullPath(""), "");
  const std::string tooLong(5000, 'x');
  EXPECT_EQ(m_files.FullPath(tooLong), tooLong);

  char before[MAX_PATH];
  ASSERT_GT(GetCurrentDirectoryA(sizeof before, before), 0U);
  ASSERT_TRUE(SetCurrentDirectoryA(m_folder.Path().c_str()));
  EXPECT_EQ(m_files.FullPath("maps"), m_folder.Path("maps"));
  EXPECT_EQ(m_files.FullPath("..").size(), m_folder.Path().rfind('\\'));
  SetCurrentDirectoryA(before);
}

TEST_F(Files, HaveOneIdentityWhateverPathLeadsToThem) {
  WriteFile(m_folder.Path("a long name.tif"), "x");
  WriteFile(m_folder.Path("b.tif"), "x");
  const std::string identity = m_files.Identity(m_folder.Path("a long name.tif"));
  EXPECT_NE(identity, "");
  EXPECT_NE(identity, m_files.Identity(m_folder.Path("b.tif")));
  EXPECT_EQ(identity, m_files.Identity(m_folder.Path("A Long Name.TIF")));
  EXPECT_EQ(identity, m_files.Identity(m_folder.Path("none\\..\\.\\a long name.tif")));
  char shortPath[MAX_PATH];
  ASSERT_GT(GetShortPathNameA(m_folder.Path("a long name.tif").c_str(), shortPath, MAX_PATH), 0U);
  EXPECT_EQ(identity, m_files.Identity(shortPath));
  EXPECT_EQ(m_files.Identity(m_folder.Path()), m_files.Identity(m_folder.Path() + "\\"));
  EXPECT_EQ(m_files.Identity(m_folder.Path("none.tif")), "");
  EXPECT_EQ(m_files.Identity(""), "");
}

TEST_F(Files, AreReadUpToALimit) {
  WriteFile(m_folder.Path("a"), std::string("x\r\n\0\x1Ay", 6));
  EXPECT_EQ(m_files.Read(m_folder.Path("a"), 6), std::string("x\r\n\0\x1Ay", 6));
  EXPECT_EQ(m_files.Read(m_folder.Path("a"), 5), std::nullopt);
  WriteFile(m_folder.Path("empty"), "");
  EXPECT_EQ(m_files.Read(m_folder.Path("empty"), 5), "");
  EXPECT_EQ(m_files.Read(m_folder.Path("none"), 5), std::nullopt);
  EXPECT_EQ(m_files.Read(m_folder.Path(), 5), std::nullopt);
}

TEST_F(Files, ExistOnlyUnderTheirExactPath) {
  WriteFile(m_folder.Path("a.tif"), "x");
  EXPECT_TRUE(m_files.Exists(m_folder.Path("a.tif")));
  EXPECT_TRUE(m_files.Exists(m_folder.Path()));
  EXPECT_FALSE(m_files.Exists(m_folder.Path("*.tif")));
  EXPECT_FALSE(m_files.Exists(m_folder.Path("b.tif")));
  EXPECT_FALSE(m_files.Exists(""));
}

TEST_F(Files, MakeOneLevelOfFolders) {
  EXPECT_TRUE(m_files.CreateFolder(m_folder.Path("a")));
  EXPECT_TRUE(m_files.CreateFolder(m_folder.Path("a"))) << "exists already";
  EXPECT_FALSE(m_files.CreateFolder(m_folder.Path("b\\c")));
  EXPECT_FALSE(m_files.CreateFolder(m_folder.Path(std::string(300, 'x'))));
}

TEST_F(Files, AreRenamedOnlyToAFreeName) {
  WriteFile(m_folder.Path("a"), "a");
  WriteFile(m_folder.Path("b"), "b");
  EXPECT_FALSE(m_files.Rename(m_folder.Path("a"), m_folder.Path("b")));
  EXPECT_EQ(ReadFile(m_folder.Path("b")), "b");
  EXPECT_TRUE(m_files.Rename(m_folder.Path("a"), m_folder.Path("c")));
  EXPECT_EQ(ReadFile(m_folder.Path("c")), "a");
  EXPECT_FALSE(m_files.Rename(m_folder.Path("none"), m_folder.Path("d")));
}

TEST_F(Files, AreCopiedOverExistingOnes) {
  WriteFile(m_folder.Path("a"), "a");
  WriteFile(m_folder.Path("b"), "b");
  EXPECT_TRUE(m_files.Copy(m_folder.Path("a"), m_folder.Path("b")));
  EXPECT_EQ(ReadFile(m_folder.Path("b")), "a");
  EXPECT_FALSE(m_files.Copy(m_folder.Path("none"), m_folder.Path("c")));
}

TEST_F(Files, AreDeleted) {
  WriteFile(m_folder.Path("a"), "a");
  EXPECT_TRUE(m_files.Delete(m_folder.Path("a")));
  EXPECT_FALSE(FileExists(m_folder.Path("a")));
  EXPECT_FALSE(m_files.Delete(m_folder.Path("a")));
}

TEST(Environment, IsThatOfTheProcess) {
  WindowsEnvironment environment;
  EXPECT_EQ(environment.Get("MOSAICON_TEST_VARIABLE"), std::nullopt);
  EXPECT_TRUE(environment.Set("MOSAICON_TEST_VARIABLE", "a b"));
  EXPECT_EQ(environment.Get("MOSAICON_TEST_VARIABLE"), "a b");
  char value[16];
  EXPECT_EQ(GetEnvironmentVariableA("MOSAICON_TEST_VARIABLE", value, sizeof value), 3U);
  const std::string longText(20000, 'x');
  EXPECT_TRUE(environment.Set("MOSAICON_TEST_VARIABLE", longText));
  EXPECT_EQ(environment.Get("MOSAICON_TEST_VARIABLE"), longText);
  EXPECT_FALSE(environment.Set("", "x"));
}

TEST(Environment, TakesTheToolFolderOnceIntoALongPath) {
  WindowsEnvironment environment;
  const std::string before = environment.Get("PATH").value_or("");
  const std::string longPath = before + ";C:\\" + std::string(20000, 'x');
  ASSERT_TRUE(environment.Set("PATH", longPath));
  Events events;
  FakeHost host(events);
  const ToolPaths tools = MakeToolPaths("C:\\App\\Mosaicon.exe");
  for (int job = 0; job < 2; ++job) {
    EXPECT_TRUE(SetToolEnvironment(tools, environment, host));
    EXPECT_EQ(environment.Get("PATH"), longPath + ";C:\\App\\gdal2tiles");
  }
  environment.Set("PATH", before);
}

TEST(ProgramPath, NamesThisProgram) {
  const std::string path = GetProgramPath();
  EXPECT_EQ(path.substr(path.rfind('\\') + 1), "job_windows_test.exe");
}

}  // namespace
