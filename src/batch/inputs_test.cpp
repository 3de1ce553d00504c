#include "batch/inputs.h"

#include <gtest/gtest.h>

#include "files/system_files.h"
#include "support/fakes.h"
#include "support/rasters.h"
#include "support/temporary_folder.h"

namespace {

class Inputs : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    GDALAllRegister();
    CPLSetConfigOption("GDAL_FILENAME_IS_UTF8", "NO");
  }

  std::string Make(const std::string& name, int epsg = 32632) {
    RasterRecipe recipe;
    recipe.epsg = epsg;
    MakeRaster(m_folder.Path(name), recipe);
    return m_folder.Path(name);
  }
  BatchInputs Gather(const std::vector<std::string>& inputs) { return GatherInputs(inputs, m_files, m_host); }

  TemporaryFolder m_folder;
  SystemFiles m_files;
  Events m_events;
  FakeHost m_host{m_events};
};

TEST_F(Inputs, AreFilesAndFoldersInOrder) {
  const std::string single = Make("z.tif");
  ASSERT_TRUE(m_files.CreateFolder(m_folder.Path("folder")));
  const std::string inFolder = Make("folder\\a.tif");
  const BatchInputs inputs = Gather({single, m_folder.Path("folder") + "\\"});
  ASSERT_EQ(inputs.orthophotos.size(), 2U);
  EXPECT_EQ(inputs.orthophotos[0].m_strFileName, single);
  EXPECT_EQ(inputs.orthophotos[1].m_strFileName, inFolder);
  EXPECT_EQ(inputs.refused, 0U);
  EXPECT_TRUE(m_events.empty());
}

TEST_F(Inputs, TellWhichFileCannotBeUsed) {
  const std::string plain = Make("plain.tif", 0);
  const BatchInputs inputs = Gather({plain, m_folder.Path("none.tif"), m_folder.Path(std::string(300, 'x'))});
  EXPECT_TRUE(inputs.orthophotos.empty());
  EXPECT_EQ(inputs.refused, 3U);
  EXPECT_EQ(m_events, (Events{"warning: " + plain +
                                  ": Unable to get geographic information into selected file (it names no "
                                  "coordinate system)",
                              "warning: " + m_folder.Path("none.tif") + ": there is no such file or folder",
                              "warning: " + m_folder.Path(std::string(300, 'x')) +
                                  ": there is no such file or folder (the path is too long)"}));
}

TEST_F(Inputs, TellWhichFilesOfAFolderArePassedOver) {
  Make("a.tif");
  const std::string plain = Make("b.tif", 0);
  const BatchInputs inputs = Gather({m_folder.Path()});
  EXPECT_EQ(inputs.orthophotos.size(), 1U);
  EXPECT_EQ(inputs.refused, 1U);
  EXPECT_EQ(m_events, Events{"warning: " + plain +
                             ": no geographic information, skipped (it names no coordinate "
                             "system)"});
}

TEST_F(Inputs, TellOfAFolderWithoutOrthophotosNothingMore) {
  ASSERT_TRUE(m_files.CreateFolder(m_folder.Path("empty")));
  EXPECT_EQ(Gather({m_folder.Path("empty")}).refused, 1U);
  EXPECT_EQ(m_events, Events{"warning: " + m_folder.Path("empty") +
                             ": No valid orthophoto found inside selected folder"});
}

TEST_F(Inputs, RefuseWhatNoMapHolds) {
  RasterRecipe recipe;
  recipe.epsg = 4326;
  recipe.geoTransform = {-180, 3.6, 0, 90, 0, -2.25};
  MakeRaster(m_folder.Path("globe.tif"), recipe);
  recipe.geoTransform = {9, 0.001, 0, 85.1, 0, -0.001};
  MakeRaster(m_folder.Path("north.tif"), recipe);
  const std::string good = Make("z.tif");
  const BatchInputs inputs = Gather({m_folder.Path()});
  ASSERT_EQ(inputs.orthophotos.size(), 1U);
  EXPECT_EQ(inputs.orthophotos[0].m_strFileName, good);
  EXPECT_EQ(inputs.refused, 2U);
  ASSERT_EQ(m_events.size(), 2U);
  EXPECT_EQ(m_events[0], "warning: " + m_folder.Path("globe.tif") +
                             ": the image reaches across 180 degrees of longitude, where web maps are cut "
                             "open, or covers more than half of the globe");
  EXPECT_EQ(m_events[1], "warning: " + m_folder.Path("north.tif") +
                             ": the image reaches beyond 85.05 degrees of latitude, where web maps end");
}

TEST_F(Inputs, TellThatARotationIsLost) {
  RasterRecipe recipe;
  recipe.epsg = 3003;
  recipe.geoTransform = {1500000, 0.5, 0.1, 5000000, 0.1, -0.5};
  MakeRaster(m_folder.Path("a.tif"), recipe);
  const BatchInputs inputs = Gather({m_folder.Path("a.tif")});
  EXPECT_EQ(inputs.orthophotos.size(), 1U);
  EXPECT_EQ(inputs.refused, 0U);
  EXPECT_EQ(m_events, Events{"warning: " + m_folder.Path("a.tif") +
                             ": the image is rotated, but will be placed without its rotation"});
}

TEST_F(Inputs, RefuseAccentedNamesOneByOne) {
  const std::string accented = Make("citt\xE0.tif");
  const std::string allowed = Make("h\xFClle.tif");
  const BatchInputs inputs = Gather({accented, allowed});
  ASSERT_EQ(inputs.orthophotos.size(), 1U);
  EXPECT_EQ(inputs.orthophotos[0].m_strFileName, allowed);
  EXPECT_EQ(inputs.refused, 1U);
  EXPECT_EQ(m_events, Events{"information: " + accented +
                             ": No accented words must be into orthophoto path and name. Please check it"});
}

TEST_F(Inputs, AreMadeAbsolute) {
  Make("a.tif");
  const BatchInputs inputs = Gather({m_folder.Path("none\\..\\.//a.tif")});
  ASSERT_EQ(inputs.orthophotos.size(), 1U);
  EXPECT_EQ(inputs.orthophotos[0].m_strFileName, m_folder.Path("a.tif"));
}

}  // namespace
