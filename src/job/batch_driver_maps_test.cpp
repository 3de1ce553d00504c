// What a job finds out about its maps. Its log, which calls every finished run OK, is the same all the while.
#include "job/testing/driver_fixture.h"

namespace {

constexpr char kDocument[] = "D:\\out\\maps\\doc.kml";
constexpr char kLocal[] = "D:\\out\\maps\\googleearth_loc.kml";
constexpr char kWeb[] = "D:\\out\\maps\\googleearth_web.kml";

// Every tool works unless a test says otherwise.
class Maps : public Driver {
 protected:
  void SetUp() override {
    Driver::SetUp();
    m_runner.onRun = [this](const ToolRun& run) { Make(run); };
  }

  const MapOutcome& Map(size_t index = 0) const { return m_host.report.maps.at(index); }
  // What is wrong with the one map of a job.
  std::string StartOne(const std::string& source = "EPSG:32632") {
    m_events.clear();
    EXPECT_EQ(Start({MakeData("a", source)}), JobResult::kReported);
    EXPECT_EQ(m_host.report.maps.size(), 1U);
    EXPECT_EQ(Map().orthophoto, "D:\\in\\a.tif");
    EXPECT_EQ(Map().problem.empty(), Map().state == MapState::kComplete);
    return Map().problem;
  }
  void Fail(Tool tool, ToolOutcome outcome = {}) {
    m_runner.onRun = [this, tool, outcome](const ToolRun& run) {
      if (run.tool != tool) return Make(run);
      m_runner.outcome = outcome;
    };
  }
  void ExpectLogSaysOk() const { EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif: OK\r\n"); }
  // The same where an earlier job has left something.
  void ExpectLogSaysOkAgain() const {
    EXPECT_EQ(m_host.report.log,
              "- D:\\in\\a.tif: previous process result deleted\r\n- D:\\in\\a.tif: OK\r\n");
  }
};

TEST_F(Maps, AreCompleteWhenAllIsThere) {
  EXPECT_EQ(StartOne(), "");
  EXPECT_EQ(m_runner.runs.size(), 1U);
  Start({MakeData("a", "EPSG:3003"), MakeData("b")});
  ASSERT_EQ(m_host.report.maps.size(), 2U);
  EXPECT_EQ(Map(0).state, MapState::kComplete);
  EXPECT_EQ(Map(0).orthophoto, "D:\\in\\a.tif") << "by its own name, not by its reprojection's";
  EXPECT_EQ(Map(1).state, MapState::kComplete);
}

TEST_F(Maps, AreToldToTheToolsAsData) {
  Start({MakeData("a", "EPSG:3003")});
  ASSERT_EQ(m_runner.runs.size(), 3U);
  const std::string tools = kTools;
  const struct {
    std::string program;
    std::string input;
    std::string output;
  } expected[] = {{tools + "gdal_translate.exe", "D:\\in\\a.tif", "D:\\in\\a.vrt"},
                  {tools + "gdalwarp.exe", "D:\\in\\a.vrt", "D:\\in\\a2.vrt"},
                  {tools + "python.exe", "D:\\in\\a2.vrt", "D:\\out\\maps"}};
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(m_runner.runs[i].tool, static_cast<Tool>(i));
    EXPECT_EQ(m_runner.runs[i].program, expected[i].program);
    EXPECT_EQ(m_runner.runs[i].orthophoto, "D:\\in\\a.tif");
    EXPECT_EQ(m_runner.runs[i].input, expected[i].input);
    EXPECT_EQ(m_runner.runs[i].output, expected[i].output);
  }
}

TEST_F(Maps, FailWithTheTranslator) {
  Fail(Tool::kTranslator, {7, "", "", false});
  EXPECT_EQ(StartOne("EPSG:3003"), "gdal_translate could not write D:\\in\\a.vrt");
  EXPECT_EQ(Map().state, MapState::kFailed);
  EXPECT_EQ(Map().exitCode, 7U);
  EXPECT_EQ(m_host.report.log, "- unable to apply translation to D:\\in\\a.tif\r\n");
}

TEST_F(Maps, FailWithTheWarper) {
  Fail(Tool::kWarper, {0, "", "", false});
  EXPECT_EQ(StartOne("EPSG:3003"), "gdalwarp could not write D:\\in\\a2.vrt")
      << "the first thing that went wrong, whatever the script made of it";
  EXPECT_EQ(Map().exitCode, std::nullopt) << "0 tells nothing";
  EXPECT_EQ(m_runner.runs.size(), 3U) << "the script is run all the same";
  ExpectLogSaysOk();
}

// The warped file has a longer name than the orthophoto, and makes the command line of the script too long.
TEST_F(Maps, TellTheFirstThingThatWentWrong) {
  Fail(Tool::kWarper);
  size_t withoutScript = 0;
  for (size_t length = 3900; length < 4000; ++length) {
    Clear();
    m_files.Remove("D:\\in\\a.vrt");
    m_settings.mapTitle = std::string(length, 't');
    const std::string problem = StartOne("EPSG:3003");
    if (m_runner.runs.size() != 2) continue;
    ++withoutScript;
    EXPECT_EQ(problem, "gdalwarp could not write D:\\in\\a2.vrt");
    EXPECT_EQ(Map().state, MapState::kFailed);
  }
  EXPECT_GT(withoutScript, 0U);
}

TEST_F(Maps, FailWithTheScript) {
  Fail(Tool::kTiler, {1, "RESULT FAILED the image has 6 bands", "", false});
  EXPECT_EQ(StartOne(), "the image has 6 bands");
  EXPECT_EQ(Map().state, MapState::kFailed);
  EXPECT_EQ(Map().exitCode, std::nullopt) << "the reason is told";
  ExpectLogSaysOk();

  Fail(Tool::kTiler, {3, "", "", false});
  EXPECT_EQ(StartOne(), "the tiler did not start or was ended from outside");
  EXPECT_EQ(Map().exitCode, 3U);
  Fail(Tool::kTiler);
  EXPECT_EQ(StartOne(), "the tiler did not start or was ended from outside");
  EXPECT_EQ(Map().exitCode, std::nullopt);
  ExpectLogSaysOk();
}

TEST_F(Maps, DoNotTakeTheDocumentOfAnEarlierJobForTheirs) {
  m_files.Put(kDocument);
  Fail(Tool::kTiler, {0, "RESULT OK", "", false});
  EXPECT_EQ(StartOne(), "the tiler made no doc.kml");
}

TEST_F(Maps, AreJudgedOneByOne) {
  m_runner.onRun = [this](const ToolRun& run) {
    if (run.orthophoto == "D:\\in\\b.tif") {
      m_runner.outcome = {1, "RESULT FAILED no memory", "", false};
    } else {
      Make(run);
    }
  };
  Start({MakeData("a"), MakeData("b"), MakeData("c")});
  EXPECT_EQ(Map(0).state, MapState::kComplete);
  EXPECT_EQ(Map(1).state, MapState::kFailed);
  EXPECT_EQ(Map(1).problem, "no memory");
  EXPECT_EQ(Map(2).state, MapState::kComplete);
  EXPECT_EQ(m_host.report.log, "- D:\\in\\a.tif: OK\r\n- D:\\in\\b.tif: OK\r\n- D:\\in\\c.tif: OK\r\n");

  Start({MakeData("a")});
  EXPECT_EQ(m_host.report.maps.size(), 1U) << "of the last job alone";
}

TEST_F(Maps, AreTwoWhenAnOrthophotoIsThereTwice) {
  bool first = true;
  m_runner.onRun = [&](const ToolRun& run) {
    if (!first) Make(run);
    first = false;
  };
  Start({MakeData("a"), MakeData("a")});
  EXPECT_EQ(Map(0).state, MapState::kFailed);
  EXPECT_EQ(Map(1).state, MapState::kComplete);
}

TEST_F(Maps, KeepADocumentOfAnEarlierJobThatSaysTheSame) {
  m_files.Put(kLocal, "made of D:\\in\\a.tif");
  EXPECT_EQ(StartOne(), "");
  for (const std::string& other : {std::string("older"), std::string()}) {
    m_files.Put(kLocal, other);
    EXPECT_EQ(StartOne(), std::string(kLocal) +
                              " is of an earlier job with another result and was kept; the new one is " +
                              kDocument);
    ExpectLogSaysOkAgain();
  }
}

TEST_F(Maps, CompareDocumentsOfFourMebibytesAtMost) {
  for (const size_t size : {size_t{4} << 20, (size_t{4} << 20) + 1}) {
    const std::string large(size, 'x');
    m_files.Put(kLocal, large);
    m_runner.onRun = [&](const ToolRun& run) { m_files.Put(ProductOf(run), large); };
    EXPECT_EQ(StartOne().empty(), size == size_t{4} << 20);
  }
}

TEST_F(Maps, NeedTheirDocumentUnderItsNewName) {
  m_files.Refuse(kLocal);
  EXPECT_EQ(StartOne(), std::string("could not make ") + kLocal);
}

TEST_F(Maps, NeedTheLinksOfTheWeb) {
  m_settings.webOutput = true;
  m_settings.targetUrl = "host/maps";
  EXPECT_EQ(StartOne(), "");
  m_steps.unlinked.insert(kWeb);
  EXPECT_EQ(StartOne(), std::string("could not write the links of ") + kWeb);
  m_steps.unlinked.clear();
  m_steps.onLinks = [this](const std::string& kml) { m_files.Remove(kml); };
  EXPECT_EQ(StartOne(), std::string("could not write the links of ") + kWeb)
      << "only its temporary file is there";
  m_files.Refuse(kWeb);
  EXPECT_EQ(StartOne(), std::string("could not write ") + kWeb);
  ExpectLogSaysOkAgain();
}

TEST_F(Maps, NeedTheirPicture) {
  m_steps.pictureProblem = "no memory";
  EXPECT_EQ(StartOne(), "could not make the picture D:\\out\\maps\\title.jpg: no memory");
  m_steps.pictureProblem = "";
  EXPECT_EQ(StartOne(), "could not make the picture D:\\out\\maps\\title.jpg");
  ExpectLogSaysOkAgain();
}

TEST_F(Maps, AreLeftOutWhereNothingCanBeRun) {
  CTifData broken = MakeData("a");
  broken.m_vCorners.pop_back();
  const CTifData tooLong = MakeData(std::string(4096, 'x'));
  Start({broken, tooLong});
  EXPECT_EQ(Map(0).state, MapState::kLeftOut);
  EXPECT_EQ(Map(0).problem, "its corners are not known");
  EXPECT_EQ(Map(1).state, MapState::kLeftOut);
  EXPECT_EQ(Map(1).problem, "the command line of a tool would be too long");
}

TEST_F(Maps, AreLeftOutWithoutATargetFolder) {
  m_runner.onRun = [this](const ToolRun& run) {
    Make(run);
    m_files.Refuse("D:\\out\\maps");
  };
  Start({MakeData("a"), MakeData("b")});
  EXPECT_EQ(Map(0).state, MapState::kComplete);
  EXPECT_EQ(Map(1).state, MapState::kLeftOut);
  EXPECT_EQ(Map(1).problem, "the target folder could not be made");
}

TEST_F(Maps, AreLeftOutWhenARasterOfAnEarlierJobCannotBeDeleted) {
  const std::string translation =
      "<VRTDataset><GCPList><GCP Pixel=\"0\" Line=\"0\"/><GCP Pixel=\"0\" Line=\"20\"/><GCP Pixel=\"10\" "
      "Line=\"0\"/><GCP Pixel=\"10\" Line=\"20\"/></GCPList><SourceFilename "
      "relativeToVRT=\"1\">a.tif</SourceFilename></VRTDataset>";
  m_files.Put("D:\\in\\a.vrt", translation);
  m_files.SetInUse("D:\\in\\a.vrt");
  EXPECT_EQ(StartOne("EPSG:3003"), "the older D:\\in\\a.vrt cannot be deleted");
  EXPECT_EQ(Map().state, MapState::kLeftOut);
}

TEST_F(Maps, AreKeptAfterANoAndMissingWhereNoneWas) {
  Fill("D:\\out\\maps\\tile_1");
  Fill("D:\\out\\maps\\tile_3");
  m_host.answer = Answer::kNo;
  Start({MakeData("a"), MakeData("b"), MakeData("c"), MakeData("d")});
  EXPECT_EQ(Map(0).state, MapState::kComplete);
  EXPECT_EQ(Map(1).state, MapState::kKept);
  EXPECT_EQ(Map(2).state, MapState::kLeftOut);
  EXPECT_EQ(Map(2).problem, "the job ended at a folder that is not empty");
  EXPECT_EQ(Map(3).state, MapState::kKept);
}

TEST_F(Maps, OfAnAbortedJobAreLeftOut) {
  m_runner.onRun = [this](const ToolRun& run) {
    if (run.orthophoto != "D:\\in\\b.tif") return Make(run);
    m_host.aborted = true;
    m_runner.outcome = {};
  };
  Start({MakeData("a"), MakeData("b"), MakeData("c")});
  EXPECT_EQ(m_host.report.log, "Aborted by user");
  EXPECT_EQ(Map(0).state, MapState::kComplete);
  for (const size_t index : {1U, 2U}) {
    EXPECT_EQ(Map(index).state, MapState::kLeftOut);
    EXPECT_EQ(Map(index).problem, "the job was aborted");
  }
}

// The script is run all the same, and whoever ends a tool gives it an exit code.
TEST_F(Maps, AreLeftOutByAnAbortOfTheWarperWhateverTheScriptMakes) {
  m_runner.onRun = [this](const ToolRun& run) {
    if (run.tool != Tool::kWarper) return Make(run);
    m_host.aborted = true;
    m_runner.outcome = {1, "", "", false};
  };
  EXPECT_EQ(StartOne("EPSG:3003"), "the job was aborted");
  EXPECT_EQ(Map().state, MapState::kLeftOut);
  EXPECT_EQ(Map().exitCode, std::nullopt);
}

TEST_F(Maps, AreAsTheyWereAfterACancel) {
  Fill("D:\\out\\maps");
  m_host.answer = Answer::kCancel;
  Start({MakeData("a")});
  EXPECT_EQ(Map().state, MapState::kKept);
}

TEST_F(Maps, ThatWereCompleteBeforeTheAbortStayComplete) {
  m_runner.onRun = [this](const ToolRun& run) {
    Make(run);
    m_host.aborted = true;
  };
  EXPECT_EQ(StartOne(), "");
}

TEST_F(Maps, ThatFailedBeforeTheAbortTellTheirReason) {
  m_runner.onRun = [this](const ToolRun& run) {
    if (run.tool == Tool::kTranslator) Make(run);
    m_host.aborted = run.tool == Tool::kTiler;
    if (m_host.aborted) m_runner.outcome = {};
  };
  EXPECT_EQ(StartOne("EPSG:3003"), "gdalwarp could not write D:\\in\\a2.vrt");
  EXPECT_EQ(Map().state, MapState::kFailed);
}

}  // namespace
