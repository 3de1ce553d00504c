// What Start checks before it starts, in which order, and what is kept of it.
#include "ui/mosaicon_fixture.h"

namespace {

constexpr BoxIcon kInformation = BoxIcon::kInformation;

class Validation : public MosaiconTest {
 protected:
  Told Refusal() {
    PressStart();
    return NextMessage();
  }

  std::vector<std::string> StoredKeys() {
    std::vector<std::string> stored;
    for (const char* key : {"TargetURL", "GoogleAPI", "Transparency_R", "Transparency_G", "Transparency_B",
                            "Resampling", "MapTitle", "TargetFolder"}) {
      if (ReadProfile("Input", key)) stored.emplace_back(key);
    }
    return stored;
  }

  using Keys = std::vector<std::string>;
  const Keys kUpToTitle = {"GoogleAPI",      "Transparency_R", "Transparency_G",
                           "Transparency_B", "Resampling",     "MapTitle"};
};

TEST_F(Validation, AsksForAnOrthophotoFirst) {
  FillIn({});
  EXPECT_EQ(Refusal(), (Told{"Select the input orthophoto path", kInformation}));
  EXPECT_EQ(StoredKeys(), Keys());
}

TEST_F(Validation, RefusesAnOrthophotoThatCannotBeUsed) {
  FillIn({.orthophoto = Path("none.tif"), .target = Path("out")});
  PressStart();
  EXPECT_EQ(NextMessage(),
            (Told{"Unable to get geographic information into selected file", BoxIcon::kWarning}));
  EXPECT_EQ(NextMessage(), (Told{"Select the input orthophoto path", kInformation}));
  EXPECT_EQ(StoredKeys(), Keys());
}

TEST_F(Validation, RefusesAccentsInThePathOfTheOrthophoto) {
  const std::string accented = Path("citt\xE0.tif");
  ASSERT_TRUE(CopyFileA(MakeOrthophoto("city.tif").c_str(), accented.c_str(), TRUE));
  FillIn({.orthophoto = accented});
  EXPECT_EQ(Refusal(),
            (Told{"No accented words must be into orthophoto path and name. Please check it", kInformation}));
  EXPECT_EQ(StoredKeys(), Keys());
}

TEST_F(Validation, AsksForTheUrlOnceItIsWanted) {
  FillIn({.orthophoto = MakeOrthophoto("a.tif"), .url = ""});
  EXPECT_EQ(Refusal(), (Told{"Select the target URL", kInformation}));
  EXPECT_EQ(StoredKeys(), Keys());
}

TEST_F(Validation, RefusesAccentsInTheUrl) {
  FillIn({.orthophoto = MakeOrthophoto("a.tif"), .url = "http://www.example.org/perch\xE9"});
  EXPECT_EQ(Refusal(), (Told{"No accented words must be included into target absolute url. Please check it",
                             kInformation}));
  EXPECT_EQ(StoredKeys(), Keys());
}

TEST_F(Validation, KeepsTheUrlWithItsScheme) {
  FillIn({.orthophoto = MakeOrthophoto("a.tif"), .url = "www.example.org/maps"});
  EXPECT_EQ(Refusal(), (Told{"Select the target folder", kInformation}));
  EXPECT_EQ(Item(IDC_TARGET_URL).Text(), "http://www.example.org/maps");
  EXPECT_EQ(ReadProfile("Input", "TargetURL"), "http://www.example.org/maps");
}

TEST_F(Validation, KeepsEverythingUpToTheFolderThatIsMissing) {
  FillIn({.orthophoto = MakeOrthophoto("a.tif"), .title = "My new map"});
  Item(IDC_GOOGLE_KEY).SetText("abc123");
  ASSERT_TRUE(Item(IDC_RESAMPLING).Choose(3));
  EXPECT_EQ(Refusal(), (Told{"Select the target folder", kInformation}));
  EXPECT_EQ(Item(IDC_MAP_TITLE).Text(), "My_new_map");
  EXPECT_EQ(StoredKeys(), kUpToTitle);
  EXPECT_EQ(ReadProfile("Input", "GoogleAPI"), "abc123");
  EXPECT_EQ(ReadProfile("Input", "Resampling"), "3");
  EXPECT_EQ(ReadProfile("Input", "MapTitle"), "My_new_map");
  for (const char* key : {"Transparency_R", "Transparency_G", "Transparency_B"}) {
    EXPECT_EQ(ReadProfile("Input", key), "0") << key;
  }
  Item(IDC_GOOGLE_KEY).SetText("");
  ASSERT_TRUE(Item(IDC_RESAMPLING).Choose(0));
}

TEST_F(Validation, RefusesRootFolders) {
  for (const char* root : {"c", "c:", "c:\\"}) {
    FillIn({.orthophoto = MakeOrthophoto("a.tif"), .target = root});
    EXPECT_EQ(Refusal(), (Told{"Root folders (e.g. c:\\) are not allowed! ", kInformation})) << root;
    EXPECT_EQ(StoredKeys(), kUpToTitle);
  }
}

// The folder passes the check, and then cannot be made.
TEST_F(Validation, NormalisesTheTargetFolder) {
  const std::string folder = Path("not there\\") + "my maps";
  FillIn({.orthophoto = MakeOrthophoto("a.tif"), .target = folder + "\\"});
  const std::string normalised = Path("not there\\") + "my_maps";
  EXPECT_EQ(Refusal(), (Told{"Unable to create folder " + normalised + " or parent folder doesn't exist",
                             BoxIcon::kWarning}));
  EXPECT_EQ(Item(IDC_TARGET_FOLDER).Text(), normalised);
  EXPECT_EQ(ReadProfile("Input", "TargetFolder"), normalised);
  EXPECT_TRUE(WaitUntil([this] { return !IsWorking() && Item(IDC_START).IsEnabled(); }));
}

TEST_F(Validation, RemembersWhatThePreviewShows) {
  EXPECT_FALSE(Item(IDC_SHOW_FINISHED_MAP).IsChecked());
  for (const bool isShown : {true, false}) {
    Item(IDC_SHOW_FINISHED_MAP).Click();
    EXPECT_TRUE(WaitUntil([&] { return ReadProfile("Input", "ShowFinishedMap") == (isShown ? "1" : "0"); }));
    ASSERT_TRUE(Restart());
    EXPECT_EQ(Item(IDC_SHOW_FINISHED_MAP).IsChecked(), isShown);
  }
}

TEST_F(Validation, RemembersWhatTilesAreToBe) {
  EXPECT_TRUE(Item(IDC_TILES_EXACT).IsChecked());
  for (const int chosen : {IDC_TILES_SMALL, IDC_TILES_EXACT}) {
    Item(chosen).Click();
    const std::string name = chosen == IDC_TILES_SMALL ? "auto" : "png";
    EXPECT_TRUE(WaitUntil([&] { return ReadProfile("Input", "Tiles") == name; }));
    ASSERT_TRUE(Restart());
    EXPECT_EQ(Item(IDC_TILES_SMALL).IsChecked(), chosen == IDC_TILES_SMALL);
    EXPECT_EQ(Item(IDC_TILES_EXACT).IsChecked(), chosen == IDC_TILES_EXACT);
  }
}

TEST_F(Validation, IsShownAgainAtTheNextStart) {
  WriteProfile("Input", "TargetURL", "http://www.example.org");
  WriteProfile("Input", "GoogleAPI", "key");
  WriteProfile("Input", "Resampling", "2");
  WriteProfile("Input", "MapTitle", "Harbour");
  WriteProfile("Input", "TargetFolder", "c:\\maps");
  WriteProfile("Input", "Transparency_R", "200");
  ASSERT_TRUE(Restart());
  EXPECT_EQ(Item(IDC_TARGET_URL).Text(), "http://www.example.org");
  EXPECT_FALSE(Item(IDC_TARGET_URL).IsEnabled());
  EXPECT_FALSE(Item(IDC_WEB_OUTPUT).IsChecked());
  EXPECT_EQ(Item(IDC_GOOGLE_KEY).Text(), "key");
  // Black at every start, whatever is stored.
  EXPECT_EQ(Item(IDC_TRANSPARENCY).Text(), "Transparency color: Black (0, 0, 0)");
  EXPECT_EQ(Item(IDC_RESAMPLING).Text(), "bilinear");
  EXPECT_EQ(Item(IDC_MAP_TITLE).Text(), "Harbour");
  EXPECT_EQ(Item(IDC_TARGET_FOLDER).Text(), "c:\\maps");
  EXPECT_EQ(Item(IDC_ORTHOPHOTO).Text(), "");
}

}  // namespace
