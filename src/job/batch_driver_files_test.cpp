// What a job writes, and what it must never write over.
#include "job/testing/driver_fixture.h"

namespace {

// Virtual rasters beside the orthophotos, and tools that write them.
class Reprojection : public Driver {
 protected:
  void SetUp() override {
    Driver::SetUp();
    m_runner.onRun = [this](const ToolRun& run) {
      m_files.Put(ProductOf(run), "written by " + FakeRunner::NameOf(run.tool));
    };
  }

  void StartWith(const std::string& name) { Start({MakeData(name, "EPSG:3003")}); }

  // As the tools write them.
  static std::string TranslationOf(const std::string& file) {
    return "<VRTDataset><GCPList><GCP Pixel=\"0\" Line=\"0\"/><GCP Pixel=\"0\" Line=\"20\"/>"
           "<GCP Pixel=\"10\" Line=\"0\"/><GCP Pixel=\"10\" "
           "Line=\"20\"/></GCPList><VRTRasterBand><SimpleSource>"
           "<SourceFilename relativeToVRT=\"1\">" +
           file + "</SourceFilename></SimpleSource></VRTRasterBand></VRTDataset>";
  }
  static std::string WarpOf(const std::string& file) {
    return "<VRTDataset subClass=\"VRTWarpedDataset\"><GDALWarpOptions><SourceDataset relativeToVRT=\"1\">" +
           file + "</SourceDataset></GDALWarpOptions></VRTDataset>";
  }

  // The files that the two tools were told to write, in order.
  std::vector<std::string> MadeFiles() const {
    std::vector<std::string> made;
    for (const ToolRun& run : m_runner.runs) {
      if (run.tool != Tool::kTiler) made.push_back(run.output);
    }
    return made;
  }
};

TEST_F(Reprojection, DoesNotTakeWhatAnEarlierJobLeftForTheTranslation) {
  m_files.Put("D:\\in\\a.vrt", TranslationOf("a.tif"));
  m_files.Put("D:\\in\\a2.vrt", WarpOf("a.vrt"));
  m_runner.onRun = nullptr;
  StartWith("a");
  EXPECT_EQ(MadeFiles(), std::vector<std::string>{"D:\\in\\a.vrt"});
  EXPECT_EQ(m_host.report.log, "- unable to apply translation to D:\\in\\a.tif\r\n");
  EXPECT_FALSE(m_files.Exists("D:\\in\\a.vrt"));
  EXPECT_EQ(TextOf("D:\\in\\a2.vrt"), WarpOf("a.vrt")) << "not replaced, so not deleted";
}

TEST_F(Reprojection, ReplacesWhatAnEarlierJobLeft) {
  m_files.Put("D:\\in\\a.vrt", TranslationOf("a.tif"));
  m_files.Put("D:\\in\\a2.vrt", WarpOf("a.vrt"));
  StartWith("a");
  EXPECT_EQ(MadeFiles(), (std::vector<std::string>{"D:\\in\\a.vrt", "D:\\in\\a2.vrt"}));
  EXPECT_EQ(TextOf("D:\\in\\a2.vrt"), "written by warp");
  const Events order = Without({"title", "folder", "busy", "range", "position", "create", "label", "pump",
                                "rename", "picture", "idle", "report"});
  ASSERT_EQ(order.size(), 6U);
  EXPECT_EQ(order[0], "delete D:\\in\\a.vrt");
  EXPECT_EQ(order[1].rfind("translate", 0), 0U);
  EXPECT_EQ(order[2], "delete D:\\in\\a2.vrt") << "the warper does not write over a file";
  EXPECT_EQ(order[3].rfind("warp", 0), 0U);
}

TEST_F(Reprojection, LeavesVirtualRastersOfTheUserAlone) {
  struct Case {
    const char* path;
    std::string text;
    std::vector<std::string> made;
  };
  const std::vector<std::string> renamed = {"D:\\in\\a2.vrt", "D:\\in\\a22.vrt"};
  const Case cases[] = {
      {"D:\\in\\a.vrt", "older", renamed},
      {"D:\\in\\a.vrt", TranslationOf("b.tif"), renamed},
      {"D:\\in\\a.vrt", WarpOf("a.vrt"), renamed},
      {"D:\\in\\a.vrt", TranslationOf("a.tif") + std::string(1 << 20, ' '), renamed},
      {"D:\\in\\a2.vrt", "mosaic", {"D:\\in\\a.vrt", "D:\\in\\a22.vrt"}},
      {"D:\\in\\a2.vrt", WarpOf("b.vrt"), {"D:\\in\\a.vrt", "D:\\in\\a22.vrt"}},
      {"D:\\in\\a2.vrt", TranslationOf("a.tif"), {"D:\\in\\a.vrt", "D:\\in\\a22.vrt"}},
  };
  for (const Case& each : cases) {
    Clear();
    for (const char* name : {"a.vrt", "a2.vrt", "a22.vrt"}) m_files.Remove(std::string("D:\\in\\") + name);
    m_files.Put(each.path, each.text);
    StartWith("a");
    EXPECT_EQ(MadeFiles(), each.made) << each.text.substr(0, 200);
    EXPECT_EQ(TextOf(each.path), each.text);
    EXPECT_EQ(CountEvents(std::string("delete ") + each.path), 0U);
    EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif: OK\r\n");
  }
}

TEST_F(Reprojection, NeverWritesOverAnOrthophotoOfTheJob) {
  // Even if it looks like the work of an earlier job, and is written in another way.
  CTifData virtualRaster = MakeData("a", "EPSG:3003");
  virtualRaster.m_strFileName = "\\\\HOST\\in\\a.vrt";
  m_files.Put("D:\\in\\a.vrt", TranslationOf("a.tif"));
  m_files.Link(virtualRaster.m_strFileName, "D:\\in\\a.vrt");
  Start({MakeData("a", "EPSG:3003"), virtualRaster});
  EXPECT_EQ(MadeFiles(), (std::vector<std::string>{"D:\\in\\a2.vrt", "D:\\in\\a22.vrt",
                                                   "\\\\HOST\\in\\a2.vrt", "\\\\HOST\\in\\a22.vrt"}));
  EXPECT_EQ(TextOf("D:\\in\\a.vrt"), TranslationOf("a.tif"));
}

TEST_F(Reprojection, IsNotTriedWhenAnOldFileCannotBeDeleted) {
  m_files.Put("D:\\in\\a.vrt", TranslationOf("a.tif"));
  m_files.SetInUse("D:\\in\\a.vrt");
  StartWith("a");
  EXPECT_EQ(MadeFiles(), std::vector<std::string>());
  EXPECT_EQ(m_host.report.log, "- unable to apply translation to D:\\in\\a.tif\r\n");

  Clear();
  m_files.SetInUse("D:\\in\\a.vrt", false);
  m_files.Put("D:\\in\\a2.vrt", WarpOf("a.vrt"));
  m_files.SetInUse("D:\\in\\a2.vrt");
  StartWith("a");
  EXPECT_EQ(MadeFiles(), std::vector<std::string>{"D:\\in\\a.vrt"});
  EXPECT_EQ(CountEvents("tile"), 0U);
  EXPECT_EQ(m_host.report.log, "- unable to apply translation to D:\\in\\a.tif\r\n");
  EXPECT_EQ(m_host.report.maps.at(0).problem, "the older D:\\in\\a2.vrt cannot be deleted");
}

// The translator is told the name of the orthophoto twice, the script once.
TEST_F(Reprojection, IsNotTriedWithACommandLineThatWouldBeTooLong) {
  for (const size_t length : {1950U, 2030U}) {
    m_events.clear();
    const std::string name(length, 'x');
    StartWith(name);
    EXPECT_EQ(m_runner.runs.size(), 0U) << length;
    EXPECT_EQ(m_host.report.log, "- unable to apply translation to D:\\in\\" + name + ".tif\r\n");
    EXPECT_EQ(m_host.report.maps.at(0).problem, "the command line of a tool would be too long");
  }
}

// The warped file has a longer name than the orthophoto.
TEST_F(Reprojection, EndsWhenOnlyItsResultMakesTheCommandLineTooLong) {
  size_t tooLong = 0;
  for (size_t length = 3900; length < 4000; ++length) {
    Clear();
    m_files.Remove("D:\\in\\a.vrt");
    m_files.Remove("D:\\in\\a2.vrt");
    m_settings.mapTitle = std::string(length, 't');
    StartWith("a");
    if (CountEvents("warp") == 0 || CountEvents("tile") > 0) continue;
    ++tooLong;
    EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif skipped\r\n");
    EXPECT_EQ(m_host.report.maps.at(0).state, MapState::kLeftOut);
  }
  EXPECT_EQ(tooLong, 2U) << "its name and its reference are longer by a letter each";
}

TEST_F(Driver, NeverPutsThePictureOverAnOrthophoto) {
  CTifData harbour = MakeData("a");
  harbour.m_strFileName = "D:\\out\\maps\\title.jpg";
  CTifData other = MakeData("b");
  other.m_strFileName = "E:\\title.jpg";
  m_files.Put(harbour.m_strFileName);
  m_files.Put(other.m_strFileName);
  m_steps.previews = {"D:\\out\\maps\\title.jpg", "D:\\out\\maps\\title2.jpg"};
  Start({harbour});
  EXPECT_EQ(CountEvents("picture D:\\out\\maps\\title.jpg -> D:\\out\\maps\\title2.jpg"), 1U);
  EXPECT_EQ(m_host.report.log,
            "- D:\\out\\maps\\title.jpg: previous process result deleted\r\n"
            "- D:\\out\\maps\\title.jpg: OK\r\n");

  m_events.clear();
  Start({other});
  EXPECT_EQ(CountEvents("picture E:\\title.jpg -> D:\\out\\maps\\title.jpg"), 1U)
      << "no orthophoto of this job";

  m_events.clear();
  m_files.Put("D:\\out\\maps\\title2.jpg");
  m_files.Remove("E:\\title.jpg");
  m_files.Link("E:\\title.jpg", "D:\\out\\maps\\title.jpg");
  Start({other});
  EXPECT_EQ(CountEvents("picture E:\\title.jpg -> D:\\out\\maps\\title2.jpg"), 1U)
      << "the same file by another way";
}

// As an image editor does that writes a new file and renames it.
TEST_F(Driver, NeverPutsThePictureOverAnOrthophotoThatIsWrittenAnewMeanwhile) {
  CTifData harbour = MakeData("a");
  harbour.m_strFileName = "D:\\out\\maps\\title.jpg";
  m_files.Put("D:\\in\\harbour.jpg");
  m_files.Link(harbour.m_strFileName, "D:\\in\\harbour.jpg");
  const std::string before = m_files.Identity(harbour.m_strFileName);
  m_steps.previews = {harbour.m_strFileName};
  m_runner.onRun = [&](const ToolRun&) {
    m_files.Remove(harbour.m_strFileName);
    m_files.Put(harbour.m_strFileName);
    EXPECT_NE(m_files.Identity(harbour.m_strFileName), before);
  };
  Start({harbour});
  EXPECT_EQ(CountEvents("picture D:\\out\\maps\\title.jpg -> D:\\out\\maps\\title2.jpg"), 1U);
}

TEST_F(Driver, PutsThePictureOverThatOfAnEarlierJobOnly) {
  m_files.Put("D:\\out\\maps\\title.jpg");
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents("picture D:\\in\\a.tif -> D:\\out\\maps\\title2.jpg"), 1U);

  m_events.clear();
  m_steps.previews.insert("D:\\out\\maps\\title.jpg");
  Start({MakeData("a")});
  EXPECT_EQ(CountEvents("picture D:\\in\\a.tif -> D:\\out\\maps\\title.jpg"), 1U);
}

TEST_F(Driver, ChangesNoOrthophotoWhateverItIsCalled) {
  m_settings.webOutput = true;
  m_settings.targetUrl = "host/maps";
  std::vector<CTifData> orthophotos;
  for (const char* name : {"googlemaps.html", "openlayers.html", "doc.kml", "googleearth_web.kml"}) {
    orthophotos.push_back(MakeData("a"));
    orthophotos.back().m_strFileName = std::string("D:\\out\\maps\\tile_0\\") + name;
    m_files.Put(orthophotos.back().m_strFileName);
  }
  Start(orthophotos);
  for (const char* change : {"delete", "rename", "copy", "links"}) {
    EXPECT_EQ(CountEvents(std::string(change) + " D:\\out\\maps\\tile_0\\"), 0U) << change;
  }
  EXPECT_GT(CountEvents("rename D:\\out\\maps\\tile_1\\"), 0U);
}

}  // namespace
