#include "job/batch_driver.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "job/testing/driver_fixture.h"
#include "kvtools/testing/told_time.h"

namespace {

TEST_F(Driver, TilesAFileInItsOwnZoneDirectly) {
  EXPECT_EQ(Start({MakeData("a")}), JobResult::kReported);
  EXPECT_EQ(m_events,
            (Events{"title := title", "folder := D:\\out\\maps", "busy", "range: 0..100", "position: 0",
                    "create D:\\out\\maps", "label: Process 1/1 - title -", "position: 0",
                    TileCall("EPSG:32632", "-t \"title\"", "../", "", "D:\\in\\a.tif", "D:\\out\\maps"),
                    "pump", "delete D:\\out\\maps\\openlayers.html",
                    "rename D:\\out\\maps\\doc.kml -> D:\\out\\maps\\googleearth_loc.kml",
                    "picture D:\\in\\a.tif -> D:\\out\\maps\\title.jpg", "idle", "label: ", "position: 0",
                    "report"}));
  EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif: OK\r\n");
  EXPECT_EQ(m_host.report.copyHint, "Copy 'D:\\out\\maps' folder and its content");
  EXPECT_EQ(m_host.report.webHint, "To '../' web space");
  EXPECT_EQ(m_files.patterns, std::vector<std::string>{"D:\\out\\maps\\*.*"});
}

TEST_F(Driver, TilesWithTheEngineWhereItIs) {
  m_files.Put(std::string(kTools) + "mosaicon-tiler.exe");
  for (const char* needless : {"python.exe", "gdal2tiles.py"}) m_files.Remove(std::string(kTools) + needless);
  EXPECT_EQ(Start({MakeData("a")}), JobResult::kReported);
  const std::string call =
      TileCall("EPSG:32632", "-t \"title\"", "../", "", "D:\\in\\a.tif", "D:\\out\\maps");
  const std::string options = call.substr(call.find(" -a "));
  EXPECT_EQ(CountEvents(std::string("tile ") + kTools + "mosaicon-tiler.exe" + options), 1U);
  EXPECT_EQ(CountEvents("tile "), 1U);
  EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif: OK\r\n");
}

TEST_F(Driver, TellsHowLongTheJobTook) {
  ToldTime time;
  KVT_StartTimer();
  time.Wait(std::chrono::seconds(10));
  m_runner.onRun = [&](const ToolRun&) { time.Wait(std::chrono::minutes(61)); };
  Start({MakeData("a"), MakeData("b")});
  EXPECT_EQ(m_host.report.elapsed, "02:02:00") << "from its own start to its end";
}

TEST_F(Driver, NumbersFoldersTitlesAndLinksOfSeveralFiles) {
  m_settings.webOutput = true;
  m_settings.targetUrl = "http://host/maps";
  EXPECT_EQ(Start({MakeData("a"), MakeData("b"), MakeData("c")}), JobResult::kReported);
  EXPECT_EQ(
      m_driver.OutputFolders(),
      (std::vector<std::string>{"D:\\out\\maps\\tile_0", "D:\\out\\maps\\tile_1", "D:\\out\\maps\\tile_2"}));
  EXPECT_EQ(m_driver.MapNames(), (std::vector<std::string>{"title_0", "title_1", "title_2"}));
  EXPECT_EQ(CountEvents("create D:\\out\\maps"), 4U) << "once at the start and once for each file";
  EXPECT_EQ(CountEvents("create D:\\out\\maps\\tile_"), 0U) << "the script makes them";
  const Events tail = {
      "label: Process 3/3 - title_2 -",
      "position: 0",
      TileCall("EPSG:32632", "-t \"title_2\"", "../../maps", "", "D:\\in\\c.tif", "D:\\out\\maps\\tile_2"),
      "pump",
      "delete D:\\out\\maps\\tile_2\\openlayers.html",
      "rename D:\\out\\maps\\tile_2\\doc.kml -> D:\\out\\maps\\tile_2\\googleearth_loc.kml",
      "copy D:\\out\\maps\\tile_2\\googleearth_loc.kml -> "
      "D:\\out\\maps\\tile_2\\googleearth_web.kml",
      "links D:\\out\\maps\\tile_2\\googleearth_web.kml http://host/maps /tile_2",
      "picture D:\\in\\c.tif -> D:\\out\\maps\\tile_2\\title_2.jpg"};
  const auto begin = std::find(m_events.begin(), m_events.end(), tail.front());
  ASSERT_GE(m_events.end() - begin, static_cast<std::ptrdiff_t>(tail.size()));
  EXPECT_EQ(Events(begin, begin + static_cast<std::ptrdiff_t>(tail.size())), tail);
  EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif: OK\r\n- D:\\in\\b.tif: OK\r\n- D:\\in\\c.tif: OK\r\n");
}

// A "\" before the quote that ends an argument would make the quote a part of it.
TEST_F(Driver, GivesTheScriptOneFormOfTheTargetFolder) {
  m_files.SetCurrentFolder("D:\\out");
  for (const char* typed : {"D:\\out\\maps\\\\", "D:/out/maps", "D:\\out\\\\maps/", "maps"}) {
    m_events.clear();
    m_settings.targetFolder = typed;
    Start({MakeData("a")});
    EXPECT_EQ(
        CountEvents(TileCall("EPSG:32632", "-t \"title\"", "../", "", "D:\\in\\a.tif", "D:\\out\\maps")), 1U)
        << typed;
    Start({MakeData("a"), MakeData("b")});
    EXPECT_EQ(CountEvents(TileCall("EPSG:32632", "-t \"title_1\"", "../../maps", "", "D:\\in\\b.tif",
                                   "D:\\out\\maps\\tile_1")),
              1U)
        << typed;
    EXPECT_EQ(m_host.report.copyHint, "Copy 'D:\\out\\maps' folder and its content");
  }
}

TEST_F(Driver, RewritesTheLinksOfASingleFileWithoutSubFolder) {
  m_settings.webOutput = true;
  m_settings.targetUrl = "host/maps";
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents("url := http://host/maps"), 1U) << "the user sees what is used";
  EXPECT_EQ(CountEvents("links D:\\out\\maps\\googleearth_web.kml http://host/maps "), 1U);
}

TEST_F(Driver, MakesNoWebVariantWithoutUrl) {
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents("copy"), 0U);
  EXPECT_EQ(CountEvents("links"), 0U);
}

TEST_F(Driver, LeavesTitleOutWhenThereIsNone) {
  m_settings.mapTitle = "";
  Start({MakeData("a"), MakeData("b")});
  EXPECT_EQ(
      CountEvents(TileCall("EPSG:32632", "", "../../maps", "", "D:\\in\\a.tif", "D:\\out\\maps\\tile_0")),
      1U);
  EXPECT_EQ(CountEvents("picture D:\\in\\b.tif -> D:\\out\\maps\\tile_1\\.jpg"), 1U);
  EXPECT_EQ(CountEvents("label: Process 2/2 -  -"), 1U);
}

TEST_F(Driver, ReprojectsAFileOfAnotherReference) {
  m_runner.onRun = [&](const ToolRun& run) {
    if (run.tool == Tool::kTranslator) Make(run);
  };
  Start({MakeData("a", "EPSG:3003", "EPSG:32632")});
  std::string points;
  for (const char* point : {"0 0 1", "0 20 3", "10 0 5", "10 20 7"}) {
    const std::string text = point;
    const int easting = text.back() - '0';
    points +=
        " -gcp " + text + ".00000000000000000000 " + std::to_string(easting + 1) + ".00000000000000000000";
  }
  const Events tools = Without({"title", "folder", "busy", "range", "position", "create", "label", "pump",
                                "delete", "rename", "picture", "idle", "report"});
  EXPECT_EQ(tools,
            (Events{std::string("translate ") + kTools + "gdal_translate.exe -of VRT -a_srs EPSG:32632" +
                        points + " \"D:\\in\\a.tif\" \"D:\\in\\a.vrt\"",
                    std::string("warp ") + kTools +
                        "gdalwarp.exe -of VRT -t_srs EPSG:32632 \"D:\\in\\a.vrt\" \"D:\\in\\a2.vrt\"",
                    TileCall("EPSG:32632", "-t \"title\"", "../", "", "D:\\in\\a2.vrt", "D:\\out\\maps")}));
  EXPECT_EQ(CountEvents("picture D:\\in\\a.tif"), 1U) << "the picture shows the orthophoto itself";
}

TEST_F(Driver, RewritesNoLinksWithoutAFreshCopy) {
  m_settings.webOutput = true;
  m_settings.targetUrl = "host/maps";
  m_files.Refuse("D:\\out\\maps\\googleearth_web.kml");
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents("copy"), 1U);
  EXPECT_EQ(CountEvents("links"), 0U) << "those of an earlier job have their addresses already";
}

TEST_F(Driver, ComparesReferencesLetterByLetter) {
  Start({MakeData("a", "epsg:32632", "EPSG:32632")});
  EXPECT_EQ(CountEvents("translate"), 1U);
}

TEST_F(Driver, GoesOnAfterATranslationWithoutOutput) {
  Start({MakeData("a", "EPSG:3003"), MakeData("b")});
  EXPECT_EQ(CountEvents("warp"), 0U);
  EXPECT_EQ(CountEvents("tile"), 1U);
  EXPECT_EQ(m_host.report.log, "- unable to apply translation to D:\\in\\a.tif\r\n- D:\\in\\b.tif: OK\r\n");
}

TEST_F(Driver, SkipsAFileWithMoreThanFourCorners) {
  CTifData broken = MakeData("a");
  broken.m_vCorners.push_back(broken.m_vCorners.front());
  Start({broken});
  EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif skipped\r\n");
  EXPECT_EQ(CountEvents("tile"), 0U);
}

TEST_F(Driver, SkipsAFileWithoutFourCorners) {
  CTifData broken = MakeData("a");
  broken.m_vCorners.pop_back();
  Start({broken, MakeData("b")});
  EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif skipped\r\n- D:\\in\\b.tif: OK\r\n");
  EXPECT_EQ(m_driver.OutputFolders(), std::vector<std::string>{"D:\\out\\maps\\tile_1"});
  EXPECT_EQ(m_driver.MapNames(), std::vector<std::string>{"title_1"});
}

TEST_F(Driver, SkipsAFileWhoseCommandLineIsTooLong) {
  CTifData data = MakeData(std::string(4096, 'x'));
  Start({data, MakeData("b")});
  EXPECT_EQ(m_host.report.log, "- " + data.m_strFileName + " skipped\r\n- D:\\in\\b.tif: OK\r\n");
  EXPECT_EQ(CountEvents("tile"), 1U);
}

TEST_F(Driver, StopsWhenTheTargetFolderCannotBeMade) {
  m_files.Refuse("D:\\out\\maps");
  EXPECT_EQ(Start({MakeData("a")}), JobResult::kTargetMissing);
  EXPECT_EQ(
      Events(m_events.end() - 3, m_events.end()),
      (Events{"create D:\\out\\maps",
              "warning: Unable to create folder D:\\out\\maps or parent folder doesn't exist", "idle"}));
}

TEST_F(Driver, GoesOnWhenTheTargetFolderOfSeveralIsGone) {
  m_runner.onRun = [&](const ToolRun&) { m_files.Refuse("D:\\out\\maps"); };
  Start({MakeData("a"), MakeData("b")});
  EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif: OK\r\n- D:\\in\\b.tif: unable to create target folder\r\n");
}

TEST_F(Driver, AsksOnceBeforeOverwriting) {
  Fill("D:\\out\\maps\\tile_0");
  Fill("D:\\out\\maps\\tile_1");
  m_host.answer = Answer::kYes;
  Start({MakeData("a"), MakeData("b")});
  EXPECT_EQ(CountEvents(kQuestion), 1U);
  EXPECT_EQ(m_host.report.log,
            "- D:\\in\\a.tif: previous process result deleted\r\n- D:\\in\\a.tif: OK\r\n"
            "- D:\\in\\b.tif: previous process result deleted\r\n- D:\\in\\b.tif: OK\r\n");
  EXPECT_EQ(CountEvents("delete"), 2U) << "only the two pages called openlayers.html";
}

TEST_F(Driver, TakesAFolderForFullWhenItHoldsAnything) {
  const std::string folder = "D:\\out\\maps\\";
  m_files.PutFolder(folder);
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents(kQuestion), 0U);
  for (const char* entry : {"0", "...", ".hidden"}) {
    for (const bool isFolder : {false, true}) {
      Clear();
      if (isFolder) {
        m_files.PutFolder(folder + entry);
      } else {
        m_files.Put(folder + entry);
      }
      Start({MakeData("a")});
      EXPECT_EQ(CountEvents(kQuestion), 1U) << entry;
    }
  }
}

TEST_F(Driver, AsksAgainInTheNextJob) {
  Fill("D:\\out\\maps");
  Start({MakeData("a")});
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents(kQuestion), 2U);
  EXPECT_EQ(m_driver.OutputFolders(), std::vector<std::string>{"D:\\out\\maps"}) << "of the last job alone";
  EXPECT_EQ(m_driver.MapNames(), std::vector<std::string>{"title"});
  EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif: previous process result deleted\r\n- D:\\in\\a.tif: OK\r\n");
}

TEST_F(Driver, EndsTheLoopAtNo) {
  Fill("D:\\out\\maps\\tile_1");
  m_host.answer = Answer::kNo;
  Start({MakeData("a"), MakeData("b"), MakeData("c")});
  EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif: OK\r\n- generation skipped: already created\r\n");
  EXPECT_EQ(CountEvents("tile"), 1U);
  EXPECT_EQ(m_driver.OutputFolders().size(), 2U);
  EXPECT_EQ(m_driver.MapNames().size(), 1U);
}

TEST_F(Driver, AbortsAtCancel) {
  m_host.answer = Answer::kCancel;
  Fill("D:\\out\\maps\\tile_1");
  EXPECT_EQ(Start({MakeData("a"), MakeData("b"), MakeData("c")}), JobResult::kReported);
  EXPECT_EQ(CountEvents("tile"), 1U);
  EXPECT_EQ(m_host.report.log, "Aborted by user");
  EXPECT_FALSE(m_host.aborted) << "cleared when the report is closed";
}

TEST_F(Driver, StopsBeforeTheNextFileWhenAborted) {
  m_runner.onRun = [&](const ToolRun&) { m_host.aborted = true; };
  Start({MakeData("a"), MakeData("b")});
  EXPECT_EQ(CountEvents("tile"), 1U);
  EXPECT_EQ(CountEvents("picture"), 1U) << "the file in work is finished";
  EXPECT_EQ(m_host.report.log, "Aborted by user");
}

TEST_F(Driver, ForgetsAnAbortFromBeforeTheJob) {
  m_host.aborted = true;
  Start({MakeData("a")});
  EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif: OK\r\n");
}

TEST_F(Driver, KeepsTheMapPageOnlyWithAKey) {
  m_runner.onRun = [&](const ToolRun&) { m_files.Put("D:\\out\\maps\\googlemaps.html"); };
  m_settings.googleApiKey = "KEY";
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents("preview: D:\\out\\maps\\googlemaps.html"), 1U);
  EXPECT_EQ(CountEvents("delete D:\\out\\maps\\googlemaps.html"), 0U);
  EXPECT_EQ(
      CountEvents(TileCall("EPSG:32632", "-t \"title\"", "../", "-g KEY", "D:\\in\\a.tif", "D:\\out\\maps")),
      1U);

  Clear();
  m_settings.googleApiKey = "";
  Start({MakeData("a")});
  const Events shown = Without({"title", "folder", "busy", "range", "position", "create", "label", "tile",
                                "rename", "picture", "idle", "report"});
  EXPECT_EQ(shown, (Events{"delete D:\\out\\maps\\googlemaps.html",
                           std::string("preview: ") + kTools + "tutorial.html", "pump",
                           "delete D:\\out\\maps\\openlayers.html"}));
}

TEST_F(Driver, ShowsTheFinishedMapToWhoWantsThat) {
  const std::string map = "preview: D:\\out\\maps\\leaflet.html";
  const std::string tutorial = std::string("preview: ") + kTools + "tutorial.html";
  m_settings.showFinishedMap = true;
  m_runner.onRun = [&](const ToolRun&) { m_files.Put("D:\\out\\maps\\googlemaps.html"); };
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents(tutorial), 1U) << "there is none";

  Clear();
  m_runner.onRun = [&](const ToolRun&) {
    m_files.Put("D:\\out\\maps\\googlemaps.html");
    m_files.Put("D:\\out\\maps\\leaflet.html");
  };
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents(map), 1U);
  EXPECT_EQ(CountEvents(tutorial), 0U);

  Clear();
  m_settings.googleApiKey = "KEY";
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents("preview: D:\\out\\maps\\googlemaps.html"), 1U);
  EXPECT_EQ(CountEvents(map), 0U);
}

TEST_F(Driver, TellsTheTilerWhatTilesAreToBe) {
  for (const auto tiles : {tiler::TileFormat::kPng, tiler::TileFormat::kAuto, tiler::TileFormat::kWebp}) {
    m_settings.tiles = tiles;
    Start({MakeData("a")});
    EXPECT_EQ(m_environment.values["MOSAICON_TILER_TILES"], NameOf(tiles));
    EXPECT_EQ(m_runner.runs.at(0).withKml, tiles != tiler::TileFormat::kWebp);
  }
}

TEST_F(Driver, ShowsNoPageWhenTheScriptMadeNone) {
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents("preview"), 0U);
}

TEST_F(Driver, DoesNothingWithBadSettings) {
  m_settings.targetFolder = "d:\\";
  EXPECT_EQ(Start({MakeData("a")}), JobResult::kBadSettings);
  EXPECT_EQ(CountEvents("busy"), 0U);
  EXPECT_EQ(Start({}), JobResult::kBadSettings);
}

TEST_F(Driver, DoesNothingWithoutTools) {
  m_files.Remove(std::string(kTools) + "gdalwarp.exe");
  EXPECT_EQ(Start({MakeData("a")}), JobResult::kToolsMissing);
  EXPECT_EQ(CountEvents("busy"), 0U);
  EXPECT_TRUE(m_environment.order.empty());
}

TEST_F(Driver, DoesNothingWithoutEnvironment) {
  m_environment.refused = "PATH";
  EXPECT_EQ(Start({MakeData("a")}), JobResult::kToolsMissing);
  EXPECT_EQ(CountEvents("create"), 0U);
}

TEST_F(Driver, IgnoresASecondStart) {
  JobResult second = JobResult::kReported;
  m_host.onEvent = [&](const std::string& event) {
    if (event == "pump") second = Start({MakeData("b")});
  };
  EXPECT_EQ(Start({MakeData("a")}), JobResult::kReported);
  EXPECT_EQ(second, JobResult::kClosed);
  EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif: OK\r\n");
}

TEST_F(Driver, RemovesWhatAKilledScriptWasWriting) {
  const std::string partial = "D:\\out\\maps\\12\\7\\9.png.~mos";
  for (const char* ending : {"complete", "aborted", "closed"}) {
    Clear();
    m_host.closed = false;
    m_runner.onRun = [&](const ToolRun&) {
      m_files.Put(partial);
      m_host.aborted = std::string(ending) == "aborted";
      m_host.closed = std::string(ending) == "closed";
    };
    Start({MakeData("a")});
    const bool killed = std::string(ending) != "complete";
    EXPECT_EQ(CountEvents("delete " + partial), killed ? 1U : 0U) << ending;
  }
}

}  // namespace
