// Whole jobs: what the window shows meanwhile, what the report says and what is on the disk then.
#include <windows.h>

// After windows.h.
#include <commctrl.h>

#include <algorithm>
#include <filesystem>
#include <regex>

#include "ui/dropping.h"
#include "ui/mosaicon_fixture.h"

namespace {

namespace fs = std::filesystem;

const Told kOverwrite = {"Folders are not empty. All content will be overwritten.\nContinue?",
                         BoxIcon::kNone,
                         {IDYES, IDNO, IDCANCEL}};

class Job : public MosaiconTest {
 protected:
  static void ExpectWorkTime(const Report& report) {
    EXPECT_TRUE(std::regex_match(report.workTime, std::regex(R"(Total work time: \d\d:[0-5]\d:[0-5]\d)")))
        << report.workTime;
  }

  // What the tiling script and the job leave for one orthophoto.
  static void ExpectResult(const std::string& folder, const std::string& name, bool web) {
    for (const std::string& file : {std::string("googleearth_loc.kml"), name + ".jpg",
                                    std::string("leaflet.html"), std::string("tilemapresource.xml")}) {
      EXPECT_TRUE(FileExists(folder + "\\" + file)) << file;
    }
    for (const char* file : {"doc.kml", "openlayers.html", "googlemaps.html"}) {
      EXPECT_FALSE(FileExists(folder + "\\" + file)) << file;
    }
    EXPECT_EQ(FileExists(folder + "\\googleearth_web.kml"), web);
    EXPECT_GT(CountTiles(folder), 1);
  }

  static int CountTiles(const std::string& folder) {
    int count = 0;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(folder, error)) {
      if (entry.path().extension() == ".png") ++count;
    }
    return count;
  }
};

TEST_F(Job, OfOneOrthophotoIsReported) {
  const std::string input = MakeOrthophoto("harbour.tif");
  const auto report = RunJob({.orthophoto = input, .target = Path("out"), .title = "My map"});
  ASSERT_TRUE(report);
  ExpectWorkTime(*report);
  EXPECT_EQ(report->log, "- " + input + ": OK\r\n");
  EXPECT_EQ(report->copyHint, "Copy '" + Path("out") + "' folder and its content");
  EXPECT_EQ(report->webHint, "To '../' web space");
  EXPECT_FALSE(report->hintsAreShown);
  ExpectResult(Path("out"), "My_map", false);
  EXPECT_EQ(Item(IDC_PROGRESS_LABEL).Text(), "");
  EXPECT_EQ(Item(IDC_PROGRESS).Send(PBM_GETPOS), 0);
}

TEST_F(Job, WithUrlLinksThere) {
  const std::string input = MakeOrthophoto("harbour.tif");
  const auto report =
      RunJob({.orthophoto = input, .target = Path("out"), .title = "m", .url = "www.example.org/maps"});
  ASSERT_TRUE(report);
  EXPECT_EQ(report->log, "- " + input + ": OK\r\n");
  ExpectResult(Path("out"), "m", true);
  EXPECT_NE(ReadFile(Path("out") + "\\googleearth_web.kml").find("http://www.example.org/maps/"),
            std::string::npos);
}

// An orthophoto that is not in its zone is put there by the other two tools.
TEST_F(Job, OfAnotherReferenceIsWarpedFirst) {
  RasterRecipe recipe;
  recipe.epsg = 3003;
  recipe.geoTransform = {1500000, 1.2, 0, 4983000, 0, -1.2};
  const std::string input = Path("grid.tif");
  MakeRaster(input, recipe);
  const auto report = RunJob({.orthophoto = input, .target = Path("out")});
  ASSERT_TRUE(report);
  EXPECT_EQ(report->log, "- " + input + ": OK\r\n");
  EXPECT_TRUE(FileExists(Path("grid2.vrt")));
  ExpectResult(Path("out"), "", false);
}

TEST_F(Job, OfAFolderTellsEachOrthophoto) {
  fs::create_directory(Path("in"));
  std::vector<std::string> expectedLog;
  for (const char* name : {"in\\a.tif", "in\\b.tif", "in\\c.tif"}) {
    expectedLog.push_back("- " + MakeOrthophoto(name) + ": OK");
  }
  FillIn({.orthophoto = Path("in"), .target = Path("out"), .title = "trio", .folderMode = true});
  PressStart();
  std::vector<std::string> labels;
  const Window label = Item(IDC_PROGRESS_LABEL);
  ASSERT_TRUE(WaitUntil(
      [&] {
        const std::string text = label.Text();
        if (!text.empty() && (labels.empty() || labels.back() != text)) labels.push_back(text);
        return static_cast<bool>(Running().Find(kReportTitle));
      },
      kJobPatience));
  const auto report = TakeReport();
  ASSERT_TRUE(report);
  EXPECT_EQ(labels, (std::vector<std::string>{"Process 1/3 - trio_0 -", "Process 2/3 - trio_1 -",
                                              "Process 3/3 - trio_2 -"}));
  std::string log;
  for (const std::string& line : expectedLog) log += line + "\r\n";
  EXPECT_EQ(report->log, log);
  for (const int i : {0, 1, 2}) {
    const std::string number = std::to_string(i);
    ExpectResult(Path("out") + "\\tile_" + number, "trio_" + number, false);
  }
}

class OverwriteQuestion : public Job {
 protected:
  // A job into a folder that is not empty, with that answer.
  std::optional<Report> RunAnswering(int answer) {
    fs::create_directory(Path("out"));
    WriteFile(Path("out") + "\\mine.txt", "mine");
    m_strInput = MakeOrthophoto("a.tif");
    FillIn({.orthophoto = m_strInput, .target = Path("out"), .title = "m"});
    PressStart();
    EXPECT_EQ(NextMessage(answer), kOverwrite);
    return TakeReport();
  }

  std::string m_strInput;
};

TEST_F(OverwriteQuestion, AnsweredYesGoesOn) {
  const auto report = RunAnswering(IDYES);
  ASSERT_TRUE(report);
  EXPECT_EQ(report->log,
            "- " + m_strInput + ": previous process result deleted\r\n- " + m_strInput + ": OK\r\n");
  ExpectResult(Path("out"), "m", false);
  EXPECT_EQ(ReadFile(Path("out") + "\\mine.txt"), "mine");
}

TEST_F(OverwriteQuestion, AnsweredNoLeavesEverything) {
  const auto report = RunAnswering(IDNO);
  ASSERT_TRUE(report);
  EXPECT_EQ(report->log, "- generation skipped: already created\r\n");
  EXPECT_EQ(CountTiles(Path("out")), 0);
}

TEST_F(OverwriteQuestion, AnsweredCancelAborts) {
  const auto report = RunAnswering(IDCANCEL);
  ASSERT_TRUE(report);
  EXPECT_EQ(report->log, "Aborted by user");
  EXPECT_EQ(CountTiles(Path("out")), 0);
}

class BusyWindow : public Job {
 protected:
  static constexpr int kLocked[] = {
      IDC_ORTHOPHOTO,  IDC_TARGET_URL, IDC_GOOGLE_KEY,    IDC_GET_GOOGLE_KEY, IDC_TRANSPARENCY,
      IDC_RESAMPLING,  IDC_MAP_TITLE,  IDC_TARGET_FOLDER, IDC_PREVIEW,        IDC_UPLOAD,
      IDC_PICK_FOLDER, IDC_WEB_OUTPUT, IDC_START,         IDC_EXIT,           IDC_SHOW_FINISHED_MAP,
      IDC_TILES_EXACT, IDC_TILES_SMALL};
  static constexpr int kAlwaysOpen[] = {IDC_ABOUT, IDC_HELP_WEB_SERVER, IDC_HELP_INPUT_OUTPUT,
                                        IDC_CHECK_UPDATES};

  void ExpectBusy(bool busy) {
    for (const int id : kLocked) EXPECT_EQ(Item(id).IsEnabled(), !busy) << id;
    for (const int id : kAlwaysOpen) EXPECT_TRUE(Item(id).IsEnabled()) << id;
    EXPECT_EQ(Item(IDC_CANCEL_JOB).IsEnabled(), busy);
    EXPECT_EQ(Item(IDC_BUSY_ANIMATION).IsVisible(), busy);
    EXPECT_TRUE(Main().Focus().IsEnabled()) << Main().Focus().Id();
  }

  std::vector<LRESULT> Icons() {
    std::vector<LRESULT> icons;
    for (const int id : {IDC_START, IDC_EXIT, IDC_CANCEL_JOB, IDC_UPLOAD, IDC_ABOUT}) {
      icons.push_back(Item(id).Send(BM_GETIMAGE, IMAGE_ICON));
    }
    return icons;
  }
};

TEST_F(BusyWindow, LocksWhatWouldDisturbTheJob) {
  FillIn({.orthophoto = MakeLargeOrthophoto(), .target = Path("out")});
  ASSERT_TRUE(Item(IDC_START).TakeFocus());
  const std::vector<LRESULT> idle = Icons();
  EXPECT_FALSE(Item(IDC_TARGET_URL).IsEnabled());
  PressStart();
  ASSERT_TRUE(WaitUntilTiling());
  ExpectBusy(true);
  EXPECT_EQ(Main().Focus(), Item(IDC_CANCEL_JOB));
  const std::vector<LRESULT> busy = Icons();
  for (const int changed : {0, 1, 2}) EXPECT_NE(busy[changed], idle[changed]) << changed;
  for (const int kept : {3, 4}) EXPECT_EQ(busy[kept], idle[kept]) << kept;
  EXPECT_EQ(std::count(busy.begin(), busy.end(), 0), 0);

  // What is dropped now is let fall.
  const std::string input = Item(IDC_ORTHOPHOTO).Text();
  ASSERT_TRUE(DropFiles(Running(), Main(), {MakeOrthophoto("other.tif")}));
  EXPECT_TRUE(IsSilent());
  EXPECT_EQ(Item(IDC_ORTHOPHOTO).Text(), input);

  Item(IDC_CANCEL_JOB).Click();
  NextMessage(IDYES);
  ASSERT_TRUE(TakeReport());
  // The field of the URL too, although its box is not ticked, until the box is clicked.
  ExpectBusy(false);
  EXPECT_EQ(Icons(), idle);
  ASSERT_FALSE(Item(IDC_WEB_OUTPUT).IsChecked());
  ASSERT_TRUE(Item(IDC_WEB_OUTPUT).Check(true));
  EXPECT_TRUE(Item(IDC_TARGET_URL).IsEnabled());
  ASSERT_TRUE(Item(IDC_WEB_OUTPUT).Check(false));
  EXPECT_TRUE(WaitUntil([this] { return !Item(IDC_TARGET_URL).IsEnabled(); }));
}

}  // namespace
