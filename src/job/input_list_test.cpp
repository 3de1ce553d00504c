#include "job/input_list.h"

#include <gtest/gtest.h>

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
  // Makes the fake file system find these files in the folder.
  void List(const std::vector<std::string>& names) {
    std::vector<FoundFile>& found = m_files.matches[m_folder.Path() + "\\*.tif"];
    // Not told to be folders: their names are enough.
    found = {{Make("dot.tif"), ".", false}, {Make("dots.tif"), "..", false}};
    for (const std::string& name : names) found.push_back({m_folder.Path(name), name, false});
  }

  TemporaryFolder m_folder;
  Events m_events;
  FakeHost m_host{m_events};
  FakeFiles m_files{m_events};
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
  Make("b.tif");
  Make("a.tif", 3003);
  Make("plain.tif", 0);
  List({"b.tif", "plain.tif", "a.tif"});
  SkippedFiles skipped;
  EXPECT_EQ(ScanInput(m_folder.Path(), true, m_files, m_host, m_list, &skipped), 0);
  ASSERT_EQ(m_list.size(), 2U);
  EXPECT_EQ(m_list[0].m_strFileName, m_folder.Path("b.tif"));
  EXPECT_EQ(m_list[1].m_strFileName, m_folder.Path("a.tif"));
  EXPECT_TRUE(m_events.empty()) << "files without georeference are passed over in silence";
  EXPECT_EQ(skipped.paths, std::vector<std::string>{m_folder.Path("plain.tif")});
}

TEST_F(InputList, SearchesARootWithoutASecondSeparator) {
  for (const char* folder : {"d:\\", "d:\\maps\\", "d:/maps/", "d:\\maps"}) {
    ScanInput(folder, true, m_files, m_host, m_list);
  }
  EXPECT_EQ(m_files.patterns,
            (std::vector<std::string>{"d:\\*.tif", "d:\\maps\\*.tif", "d:/maps/*.tif", "d:\\maps\\*.tif"}));
}

TEST_F(InputList, PassesFoldersOver) {
  Make("a.tif");
  List({});
  m_files.matches[m_folder.Path() + "\\*.tif"].push_back({m_folder.Path("a.tif"), "a.tif", true});
  ScanInput(m_folder.Path(), true, m_files, m_host, m_list);
  EXPECT_TRUE(m_list.empty());
}

TEST_F(InputList, TellsThatAFolderHoldsNoOrthophoto) {
  Make("plain.tif", 0);
  List({"plain.tif"});
  EXPECT_EQ(ScanInput(m_folder.Path(), true, m_files, m_host, m_list), 0);
  EXPECT_TRUE(m_list.empty());
  EXPECT_EQ(m_events, Events{"warning: No valid orthophoto found inside selected folder"});
}

TEST_F(InputList, ChoosesFolderModeFromTwoItemsOn) {
  const std::string a = Make("a.tif");
  EXPECT_FALSE(RestoreInputList(a).folderMode);
  EXPECT_TRUE(RestoreInputList(a + "|" + a).folderMode);
}

TEST_F(InputList, IsMadeOfFullPaths) {
  m_files.fullPaths = {{"a.tif", "d:\\in\\a.tif"}, {"..\\b.tif", "d:\\b.tif"}};
  EXPECT_EQ(MakeInputListFull("", m_files), "");
  EXPECT_EQ(MakeInputListFull("a.tif", m_files), "d:\\in\\a.tif");
  EXPECT_EQ(MakeInputListFull("a.tif|c:\\c.tif|..\\b.tif", m_files), "d:\\in\\a.tif|c:\\c.tif|d:\\b.tif");
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
  ASSERT_EQ(restored.orthophotos.size(), 2U);
  EXPECT_EQ(restored.orthophotos[0].m_strFileName, b);
  EXPECT_EQ(restored.orthophotos[1].m_strFileName, a);
}

}  // namespace
