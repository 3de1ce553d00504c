#include "job/job_settings.h"

#include <gtest/gtest.h>

#include "files/testing/fake_file_system.h"
#include "kvtools/kvtools.h"
#include "support/fakes.h"

namespace {

std::string Stored(const char* key) {
  char buffer[4096];
  KVT_GetUserProfileString("Input", key, "(none)", buffer, sizeof buffer);
  return buffer;
}

class Settings : public testing::Test {
 protected:
  void SetUp() override {
    // Each test has a store of its own.
    static int number = 0;
    KVT_SetProfileProduct(("Mosaicon Test " + std::to_string(number++)).c_str());
    m_settings.inputPath = "d:\\in\\a.tif";
    m_settings.targetFolder = "d:\\out";
  }

  bool Validate(size_t orthophotos = 1) {
    return ValidateAndSaveSettings(m_settings, orthophotos, m_files, m_host);
  }

  void ExpectRefused(const std::string& message) {
    m_events.clear();
    EXPECT_FALSE(Validate());
    ASSERT_FALSE(m_events.empty()) << message;
    EXPECT_EQ(m_events.back(), "information: " + message);
  }

  Events m_events;
  FakeHost m_host{m_events};
  FakeFileSystem m_files;
  JobSettings m_settings;
};

TEST_F(Settings, NeedAnInput) {
  EXPECT_FALSE(Validate(0));
  EXPECT_EQ(m_events, Events{"information: Select the input orthophoto path"});
  m_settings.inputPath = "";
  ExpectRefused("Select the input orthophoto path");
  EXPECT_EQ(Stored("GoogleAPI"), "(none)");
}

TEST_F(Settings, RefuseTheSixAccentedBytesInTheInputPath) {
  for (const char* accent : {"\xE0", "\xE8", "\xE9", "\xEC", "\xF2", "\xF9"}) {
    m_settings.inputPath = std::string("d:\\citt") + accent + "\\a.tif";
    ExpectRefused("No accented words must be into orthophoto path and name. Please check it");
  }
  for (const char* letter : {"\xC0", "\xC8", "\xE1", "\xFC", "\xF1", "\xDF"}) {
    m_settings.inputPath = std::string("d:\\citt") + letter + "\\a.tif";
    EXPECT_TRUE(Validate()) << letter;
  }
}

TEST_F(Settings, NeedAUrlOnlyForWebOutput) {
  m_settings.targetUrl = "";
  EXPECT_TRUE(Validate());
  m_settings.webOutput = true;
  ExpectRefused("Select the target URL");
  m_settings.targetUrl = "http://host/citt\xE0";
  ExpectRefused("No accented words must be included into target absolute url. Please check it");
  EXPECT_EQ(Stored("TargetURL"), "(none)");
}

TEST_F(Settings, PutHttpBeforeAUrlThatHasNone) {
  struct Case {
    const char* typed;
    const char* used;
  };
  const Case cases[] = {{"HTTP://host/x", "HTTP://host/x"},
                        {"host/x", "http://host/x"},
                        {"https://host/x", "http://https://host/x"},
                        {"ftp://http://x", "ftp://http://x"}};
  m_settings.webOutput = true;
  for (const Case& each : cases) {
    m_events.clear();
    m_settings.targetUrl = each.typed;
    EXPECT_TRUE(Validate());
    EXPECT_EQ(m_settings.targetUrl, each.used);
    EXPECT_EQ(Stored("TargetURL"), each.used);
    const bool rewritten = std::string(each.typed) != each.used;
    EXPECT_EQ(m_events.front() == std::string("url := ") + each.used, rewritten);
  }
}

TEST_F(Settings, LookForAccentsOnlyWhereTheyDoHarm) {
  m_settings.targetUrl = "http://host/citt\xE0";
  m_settings.mapTitle = "perch\xE9";
  m_settings.targetFolder = "d:\\pi\xF9";
  EXPECT_TRUE(Validate()) << "the address is not used";
  EXPECT_EQ(m_settings.mapTitle, "perch\xE9");
  EXPECT_EQ(m_settings.targetFolder, "d:\\pi\xF9");
}

TEST_F(Settings, ComeBackAsLongAsTheyMayBe) {
  m_settings.googleApiKey = std::string(5000, 'k');
  EXPECT_TRUE(Validate());
  EXPECT_EQ(RestoreSettings().googleApiKey, std::string(4095, 'k'));
}

TEST_F(Settings, ForgetTheUrlOfAJobWithoutWebOutput) {
  m_settings.targetUrl = "http://host/x";
  EXPECT_TRUE(Validate());
  EXPECT_EQ(m_settings.targetUrl, "");
  EXPECT_EQ(Stored("TargetURL"), "(none)");
}

TEST_F(Settings, RefuseRootFolders) {
  m_settings.targetFolder = "";
  ExpectRefused("Select the target folder");
  m_settings.targetFolder = "\"\"";
  ExpectRefused("Select the target folder");
  m_files.SetCurrentFolder("d:\\work");
  for (const char* root : {"d:\\", "d:", "d", "\\a\\", "d:\\\\", "d:/", "d:////", "d:\\.", "d:/./",
                           "d:\\maps\\..", "\\\\\\\\", "\"d:\\\""}) {
    m_settings.targetFolder = root;
    ExpectRefused("Root folders (e.g. c:\\) are not allowed! ");
    EXPECT_EQ(m_settings.targetFolder, root) << "left as it was";
  }
  EXPECT_EQ(Stored("TargetFolder"), "(none)");
}

TEST_F(Settings, NormaliseOnlyTheLastComponentOfTheFolder) {
  struct Case {
    const char* typed;
    const char* used;
  };
  const Case cases[] = {{"d:\\a", "d:\\a"},
                        {"d:\\my maps\\", "d:\\my_maps"},
                        {"d:\\old dir\\new maps", "d:\\old dir\\new_maps"},
                        {"d:\\a\\\\", "d:\\a"},
                        {"d:\\old dir\\\\new maps\\\\", "d:\\old dir\\new_maps"},
                        {"d:/old dir/new maps/", "d:\\old dir\\new_maps"},
                        {"d:\\a\tb\\c\td", "d:\\a\tb\\c\td"},
                        {"d:\\maps ", "d:\\maps_"},
                        {"\"d:\\my maps\"", "d:\\my_maps"},
                        {"\\\\server\\my share\\x y", "\\\\server\\my share\\x_y"},
                        {"maps of mine", "d:\\my work\\maps_of_mine"},
                        {"d:\\my maps\\.", "d:\\my_maps"}};
  m_files.SetCurrentFolder("d:\\my work");
  for (const Case& each : cases) {
    m_events.clear();
    m_settings.targetFolder = each.typed;
    EXPECT_TRUE(Validate());
    EXPECT_EQ(m_settings.targetFolder, each.used);
    EXPECT_EQ(Stored("TargetFolder"), each.used);
    EXPECT_EQ(m_events.back(), std::string("folder := ") + each.used);
  }
}

TEST(Unquote, TakesOnePairOfQuotesAway) {
  EXPECT_EQ(Unquote("\"d:\\my maps\\a.tif\""), "d:\\my maps\\a.tif");
  EXPECT_EQ(Unquote("d:\\a.tif"), "d:\\a.tif");
  EXPECT_EQ(Unquote("\"\""), "");
  for (const char* odd : {"\"", "\"d:\\a", "d:\\a\"", ""}) EXPECT_EQ(Unquote(odd), odd);
}

TEST_F(Settings, ReplaceOnlySpacesInTheTitle) {
  m_settings.mapTitle = "My map 1";
  EXPECT_TRUE(Validate());
  EXPECT_EQ(m_settings.mapTitle, "My_map_1");
  EXPECT_EQ(Stored("MapTitle"), "My_map_1");
  EXPECT_EQ(m_events.front(), "title := My_map_1");
  m_settings.mapTitle = " \x80-\xA0 ";
  EXPECT_TRUE(Validate());
  EXPECT_EQ(m_settings.mapTitle, "_\x80-\xA0_");
}

TEST_F(Settings, RefuseTitlesThatNoFileNameAndNoCommandCanHold) {
  for (const char* title : {"a\\b", "map\\", "Area 1/2", "a:b", "a*", "a?", "6\" pipe", "<a", "a>", "a|b",
                            "a\tb", "a\nb", "\x01", "\x1F"}) {
    m_settings.mapTitle = title;
    ExpectRefused("The map title must not contain any of \\ / : * ? \" < > |");
  }
  for (const char* title :
       {"", "My map 1", "-a & b'-", "100 %", "#1", "citt\xE0", "\x7F", "a.b", ".", "(a)"}) {
    m_settings.mapTitle = title;
    EXPECT_TRUE(Validate()) << title;
  }
}

TEST_F(Settings, RefuseKeysThatNoCommandCanHold) {
  for (const char* key : {"my key", " KEY", "KEY ", "a\"b", "a\tb", "a\n"}) {
    m_settings.googleApiKey = key;
    ExpectRefused("The Google API key must not contain blanks or quotes");
  }
  for (const char* key : {"", "AIza-Sy_0", "a\\", "a/b=c"}) {
    m_settings.googleApiKey = key;
    EXPECT_TRUE(Validate()) << key;
  }
}

TEST_F(Settings, AreCheckedForTheToolsLast) {
  m_settings.mapTitle = "a/b c";
  m_settings.googleApiKey = "my key";
  EXPECT_FALSE(Validate());
  EXPECT_EQ(m_events, (Events{"title := a/b_c", "folder := d:\\out",
                              "information: The map title must not contain any of \\ / : * ? \" < > |"}));
  EXPECT_EQ(Stored("MapTitle"), "a/b_c");
  EXPECT_EQ(Stored("TargetFolder"), "d:\\out");
  m_settings.targetFolder = "d:\\";
  ExpectRefused("Root folders (e.g. c:\\) are not allowed! ");
}

TEST_F(Settings, StayStoredWhenALaterCheckFails) {
  m_settings.webOutput = true;
  m_settings.targetUrl = "host/x";
  m_settings.googleApiKey = " KEY ";
  m_settings.transparency = 0x0000FF | 0x8000 | 0x7F0000;
  m_settings.resampling = 3;
  m_settings.mapTitle = "a b";
  m_settings.targetFolder = "d:\\";
  EXPECT_FALSE(Validate());
  EXPECT_EQ(Stored("TargetURL"), "http://host/x");
  EXPECT_EQ(Stored("GoogleAPI"), " KEY ");
  EXPECT_EQ(Stored("Transparency_R"), "255");
  EXPECT_EQ(Stored("Transparency_G"), "128");
  EXPECT_EQ(Stored("Transparency_B"), "127");
  EXPECT_EQ(Stored("Resampling"), "3");
  EXPECT_EQ(Stored("MapTitle"), "a_b");
  EXPECT_EQ(Stored("TargetFolder"), "(none)");
  EXPECT_EQ(m_events, (Events{"url := http://host/x", "title := a_b",
                              "information: Root folders (e.g. c:\\) are not allowed! "}));
}

TEST_F(Settings, AreNotStoredBeforeTheUrlIsChecked) {
  m_settings.webOutput = true;
  m_settings.googleApiKey = "KEY";
  EXPECT_FALSE(Validate());
  EXPECT_EQ(Stored("GoogleAPI"), "(none)");
}

TEST_F(Settings, ComeBackAsTheyWereStored) {
  m_settings.webOutput = true;
  m_settings.targetUrl = "http://host/x";
  m_settings.googleApiKey = "KEY";
  m_settings.transparency = 0xFFFFFF;
  m_settings.resampling = 3;
  m_settings.mapTitle = "a b";
  ASSERT_TRUE(Validate());
  const JobSettings restored = RestoreSettings();
  EXPECT_EQ(restored.targetUrl, "http://host/x");
  EXPECT_EQ(restored.googleApiKey, "KEY");
  EXPECT_EQ(restored.resampling, 3);
  EXPECT_EQ(ResamplingModes()[3], "cubic");
  EXPECT_EQ(restored.mapTitle, "a_b");
  EXPECT_EQ(restored.targetFolder, "d:\\out");
  EXPECT_EQ(restored.transparency, 0U) << "black at every start";
  EXPECT_FALSE(restored.webOutput);
  EXPECT_EQ(restored.inputPath, "");
}

TEST_F(Settings, AreEmptyAtFirst) {
  const JobSettings restored = RestoreSettings();
  EXPECT_EQ(restored.targetUrl + restored.googleApiKey + restored.mapTitle + restored.targetFolder, "");
  EXPECT_EQ(restored.resampling, 0);
}

TEST_F(Settings, KeepTheChoiceOfThePreviewAtOnce) {
  EXPECT_FALSE(RestoreSettings().showFinishedMap);
  SaveShowFinishedMap(true);
  EXPECT_TRUE(RestoreSettings().showFinishedMap);
  SaveShowFinishedMap(false);
  EXPECT_FALSE(RestoreSettings().showFinishedMap);
}

TEST_F(Settings, TakeAResamplingModeThatIsNoneForTheFirst) {
  for (const char* stored : {"abc", "", "-1", "7", "99999999999"}) {
    KVT_WriteUserProfileString("Input", "Resampling", stored);
    EXPECT_EQ(RestoreSettings().resampling, 0) << stored;
  }
  KVT_WriteUserProfileString("Input", "Resampling", "6");
  EXPECT_EQ(RestoreSettings().resampling, 6);
}

TEST_F(Settings, OfferTheResamplingModesInOrder) {
  EXPECT_EQ(ResamplingModes(), (std::vector<std::string>{"average", "near", "bilinear", "cubic",
                                                         "cubicspline", "lanczos", "antialias"}));
}

}  // namespace
