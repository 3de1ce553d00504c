#include "job/input_list.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "files/system_files.h"
#include "files/testing/fake_file_system.h"
#include "support/fakes.h"
#include "support/rasters.h"
#include "support/temporary_folder.h"

namespace {

class SkippedFiles : public SkippedFileObserver {
 public:
  void OnSkipped(const std::string& path) override { paths.push_back(path); }
  std::vector<std::string> paths;
};

class InputList : public testing::Test {
 protected:
  static void SetUpTestSuite() { GDALAllRegister(); }

  std::string Make(const std::string& name, int epsg = 32632) {
    RasterRecipe recipe;
    recipe.epsg = epsg;
    MakeRaster(m_folder.Path(name), recipe);
    return m_folder.Path(name);
  }
  TemporaryFolder m_folder;
  Events m_events;
  FakeHost m_host{m_events};
  SystemFiles m_files;
  std::vector<CTifData> m_list{1};
};

TEST_F(InputList, HoldsTheOneFile) {
  const std::string path = Make("a.tif");
  EXPECT_EQ(ScanInput(path, false, m_files, m_host, m_list), 0);
  ASSERT_EQ(m_list.size(), 1U);
  EXPECT_EQ(m_list[0].m_strFileName, path);
  EXPECT_EQ(m_list[0].m_vCorners.size(), 4U);
  EXPECT_EQ(m_list[0].m_strSourceEPSG, "EPSG:32632");
  EXPECT_TRUE(m_events.empty());
}

TEST_F(InputList, IsEmptyAfterAFileThatCannotBeRead) {
  EXPECT_EQ(ScanInput(Make("a.tif", 0), false, m_files, m_host, m_list), 0);
  EXPECT_TRUE(m_list.empty());
  EXPECT_EQ(m_events, Events{"warning: Unable to get geographic information into selected file"});
}

TEST_F(InputList, StaysAsItIsForAnEmptyPath) {
  EXPECT_EQ(ScanInput("", false, m_files, m_host, m_list), 0);
  EXPECT_EQ(ScanInput("", true, m_files, m_host, m_list), 0);
  EXPECT_EQ(m_list.size(), 1U);
  EXPECT_TRUE(m_events.empty());
}

TEST_F(InputList, HoldsAFolderInTheOrderFound) {
  for (const char* name : {"b.tif", "A.TIF", "c.tif"}) Make(name, 3003);
  const std::string plain = Make("plain.tif", 0);
  std::vector<std::string> expected = FindOrthophotos(m_files, m_folder.Path());
  EXPECT_EQ(expected.size(), 4U);
  std::erase(expected, plain);
  SkippedFiles skipped;
  EXPECT_EQ(ScanInput(m_folder.Path(), true, m_files, m_host, m_list, &skipped), 0);
  std::vector<std::string> paths;
  for (const CTifData& data : m_list) paths.push_back(data.m_strFileName);
  EXPECT_EQ(paths, expected);
  EXPECT_TRUE(m_events.empty()) << "files without georeference are passed over in silence";
  EXPECT_EQ(skipped.paths, std::vector<std::string>{plain});
}

TEST_F(InputList, TellsThatAFolderHoldsNoOrthophoto) {
  Make("plain.tif", 0);
  EXPECT_EQ(ScanInput(m_folder.Path(), true, m_files, m_host, m_list), 0);
  EXPECT_TRUE(m_list.empty());
  EXPECT_EQ(m_events, Events{"warning: No valid orthophoto found inside selected folder"});
}

TEST(Orthophotos, AreTheTifFilesOfAFolderInTheOrderFound) {
  FakeFileSystem files;
  for (const char* name : {"b.tif", "a.jpg", "A.TIF", "c.tiff", "tif", "deeper\\d.tif"}) {
    files.Put(std::string("d:\\maps\\") + name);
  }
  files.PutFolder("d:\\maps\\folder.tif");
  EXPECT_EQ(FindOrthophotos(files, "d:\\maps"),
            (std::vector<std::string>{"d:\\maps\\b.tif", "d:\\maps\\A.TIF"}));
  EXPECT_TRUE(FindOrthophotos(files, "d:\\none").empty());
}

TEST(Orthophotos, AreFoundHoweverTheFolderIsWritten) {
  FakeFileSystem files;
  files.Put("d:\\a.tif");
  files.Put("d:\\maps\\a.tif");
  const std::pair<const char*, const char*> cases[] = {{"d:\\", "d:\\a.tif"},
                                                       {"d:\\maps\\", "d:\\maps\\a.tif"},
                                                       {"d:/maps/", "d:/maps/a.tif"},
                                                       {"d:\\maps", "d:\\maps\\a.tif"}};
  for (const auto& [folder, path] : cases) {
    EXPECT_EQ(FindOrthophotos(files, folder), std::vector<std::string>{path}) << folder;
  }
}

TEST_F(InputList, ChoosesFolderModeFromTwoItemsOn) {
  const std::string a = Make("a.tif");
  EXPECT_FALSE(RestoreInputList(a).folderMode);
  EXPECT_TRUE(RestoreInputList(a + "|" + a).folderMode);
}

TEST_F(InputList, IsMadeOfFullPaths) {
  FakeFileSystem files;
  files.SetCurrentFolder("d:\\in");
  EXPECT_EQ(MakeInputListFull("", files), "");
  EXPECT_EQ(MakeInputListFull("a.tif", files), "d:\\in\\a.tif");
  EXPECT_EQ(MakeInputListFull("a.tif|c:\\c.tif|..\\b.tif", files), "d:\\in\\a.tif|c:\\c.tif|d:\\b.tif");
}

TEST_F(InputList, ComesFromTheCommandLine) {
  const std::string a = Make("a.tif");
  const std::string plain = Make("plain.tif", 0);
  const std::string b = Make("b.tif");

  RestoredInput restored = RestoreInputList("");
  EXPECT_FALSE(restored.folderMode);
  EXPECT_EQ(restored.shownPath, "");
  EXPECT_TRUE(restored.orthophotos.empty());

  restored = RestoreInputList(a);
  EXPECT_FALSE(restored.folderMode);
  EXPECT_EQ(restored.shownPath, a);
  ASSERT_EQ(restored.orthophotos.size(), 1U);

  restored = RestoreInputList(plain);
  EXPECT_EQ(restored.shownPath, plain);
  EXPECT_TRUE(restored.orthophotos.empty());

  restored = RestoreInputList(a + "|" + b);
  EXPECT_TRUE(restored.folderMode);
  EXPECT_EQ(restored.orthophotos.size(), 2U);

  restored = RestoreInputList(b + "|" + plain + "|" + a);
  EXPECT_TRUE(restored.folderMode);
  EXPECT_EQ(restored.shownPath, m_folder.Path("b.tif").substr(0, b.size() - 5));
  EXPECT_EQ(RestoreInputList("d:\\one\\a.tif|e:\\two\\b.tif").shownPath, "d:\\one\\") << "that of the first";
  ASSERT_EQ(restored.orthophotos.size(), 2U);
  EXPECT_EQ(restored.orthophotos[0].m_strFileName, b);
  EXPECT_EQ(restored.orthophotos[1].m_strFileName, a);
}

}  // namespace
