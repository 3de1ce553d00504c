#include "batch/job_audit.h"

#include <gtest/gtest.h>

#include "support/fakes.h"
#include "support/rasters.h"
#include "support/temporary_folder.h"
// After the others: names that it defines are macros.
#include <windows.h>

namespace {

class Audit : public testing::Test {
 protected:
  static void SetUpTestSuite() { GDALAllRegister(); }

  void SetUp() override {
    MakeRaster(m_strOrthophoto, {});
    ASSERT_TRUE(m_audit.CreateFolder(m_folder.Path("out")));
    m_runner.onRun = [this](const std::string& tool, const std::string&) {
      if (tool == "translate") WriteFile(m_folder.Path("a.vrt"), "x");
      if (tool == "warp") WriteFile(m_folder.Path("a2.vrt"), "x");
      if (tool == "tile") LeaveTiles("RESULT OK\n");
    };
  }

  std::string Quoted(const std::string& name) const { return " \"" + m_folder.Path(name) + "\""; }
  // What the tiling script leaves.
  void LeaveTiles(const std::string& result) {
    WriteFile(m_folder.Path("out\\doc.kml"), "new");
    AddToLog("START\n" + result);
  }
  void AddToLog(const std::string& text) {
    const std::string before = FileExists(m_strLog) ? ReadFile(m_strLog) : "";
    WriteFile(m_strLog, before + text);
  }
  void Translate() { m_audit.RunTranslator("t", " -of VRT" + Quoted("a.tif") + Quoted("a.vrt")); }
  void Warp() { m_audit.RunWarper("w", " -of VRT" + Quoted("a.vrt") + Quoted("a2.vrt")); }
  void Tile(const char* input) {
    m_audit.RunTiler("p", Quoted("gdal2tiles.py") + Quoted(input) + Quoted("out"));
  }
  void Finish() {
    m_audit.Rename(m_folder.Path("out\\doc.kml"), m_folder.Path("out\\googleearth_loc.kml"));
    m_audit.MakePreview(m_strOrthophoto, m_folder.Path("out\\x.jpg"));
  }
  std::string Result() const {
    const auto found = m_audit.Results().find(m_strOrthophoto);
    return found != m_audit.Results().end() ? found->second : "(none)";
  }

  TemporaryFolder m_folder;
  const std::string m_strOrthophoto = m_folder.Path("a.tif");
  const std::string m_strLog = m_folder.Path("tiler.log");
  Events m_events;
  FakeHost m_host{m_events};
  FakeRunner m_runner{m_events};
  JobAudit m_audit{m_runner, m_host, m_strLog};
};

TEST_F(Audit, CallsAnOrthophotoCompleteWhenAllIsThere) {
  Tile("a.tif");
  Finish();
  EXPECT_EQ(Result(), "");
}

TEST_F(Audit, CallsAReprojectedOrthophotoCompleteWhenAllIsThere) {
  Translate();
  Warp();
  Tile("a2.vrt");
  Finish();
  EXPECT_EQ(Result(), "");
  EXPECT_EQ(m_audit.Results().size(), 1U) << "by its own name, not by its reprojection's";
}

TEST_F(Audit, TellsTheReasonFromTheLogInTheConsolesCodePage) {
  m_runner.onRun = [this](const std::string&, const std::string&) {
    LeaveTiles("RESULT FAILED no \xC3\xBC here\n");
  };
  Tile("a.tif");
  Finish();
  EXPECT_EQ(Result(), "no \xFC here");
}

TEST_F(Audit, ReadsOnlyWhatTheRunAddedToTheLog) {
  AddToLog("RESULT OK\n");
  m_runner.onRun = [this](const std::string&, const std::string&) { AddToLog("START\nkilled\n"); };
  Tile("a.tif");
  EXPECT_EQ(Result(), "the tiling script did not start or was ended from outside");
}

TEST_F(Audit, SaysThatNothingIsKnownWithoutALog) {
  m_runner.onRun = [this](const std::string&, const std::string&) {
    WriteFile(m_folder.Path("out\\doc.kml"), "new");
  };
  Tile("a.tif");
  EXPECT_EQ(Result(),
            "the tiling script could not write its log " + m_strLog + ", so nothing is known of its success");
}

TEST_F(Audit, SaysThatNothingIsKnownWithALogThatCouldNotBeWritten) {
  m_runner.onRun = [this](const std::string&, const std::string&) {
    LeaveTiles("");
    WriteFile(m_strLog, "");
  };
  Tile("a.tif");
  EXPECT_EQ(Result(),
            "the tiling script could not write its log " + m_strLog + ", so nothing is known of its success");
}

TEST_F(Audit, NoticesAScriptThatNeverStarted) {
  m_runner.onRun = nullptr;
  Tile("a.tif");
  EXPECT_EQ(Result(), "the tiling script did not start or was ended from outside");
}

TEST_F(Audit, DoesNotTakeAnOldDocumentForANewOne) {
  WriteFile(m_folder.Path("out\\doc.kml"), "old");
  m_runner.onRun = [this](const std::string&, const std::string&) { AddToLog("RESULT OK\n"); };
  Tile("a.tif");
  EXPECT_EQ(Result(), "the tiling script made no doc.kml");
}

TEST_F(Audit, DoesNotTileAfterAToolWithoutOutput) {
  WriteFile(m_folder.Path("a2.vrt"), "left by an earlier job");
  m_runner.onRun = [this](const std::string& tool, const std::string&) {
    if (tool == "translate") WriteFile(m_folder.Path("a.vrt"), "x");
  };
  Translate();
  Warp();
  Tile("a2.vrt");
  EXPECT_EQ(Result(), "gdalwarp could not write " + m_folder.Path("a2.vrt"));
  EXPECT_EQ(m_events.size(), 2U);
}

TEST_F(Audit, ForgetsTheFailureOfTheOrthophotoBefore) {
  m_runner.onRun = [this](const std::string& tool, const std::string&) {
    if (tool == "tile") LeaveTiles("RESULT OK\n");
  };
  m_audit.RunTranslator("t", Quoted("b.tif") + Quoted("b.vrt"));
  Tile("a.tif");
  Finish();
  EXPECT_EQ(Result(), "");
  EXPECT_EQ(m_audit.Results().at(m_folder.Path("b.tif")),
            "gdal_translate could not write " + m_folder.Path("b.vrt"));
}

TEST_F(Audit, StartsNothingAfterAnAbort) {
  m_host.aborted = true;
  Translate();
  Warp();
  Tile("a2.vrt");
  Tile("a.tif");
  EXPECT_TRUE(m_events.empty());
}

TEST_F(Audit, NoticesThatAnOldDocumentWithAnotherTextWasKept) {
  WriteFile(m_folder.Path("out\\googleearth_loc.kml"), "old");
  Tile("a.tif");
  Finish();
  EXPECT_EQ(Result(), m_folder.Path("out\\googleearth_loc.kml") +
                          " is of an earlier job with another result and was kept; the new one is " +
                          m_folder.Path("out\\doc.kml"));

  WriteFile(m_folder.Path("out\\googleearth_loc.kml"), "new");
  Tile("a.tif");
  Finish();
  EXPECT_EQ(Result(), "");
}

TEST_F(Audit, NoticesAPictureThatCouldNotBeMade) {
  RasterRecipe recipe;
  recipe.bands = 5;
  MakeRaster(m_strOrthophoto, recipe);
  Tile("a.tif");
  Finish();
  EXPECT_EQ(Result(),
            "could not make the picture " + m_folder.Path("out\\x.jpg") +
                ": JPEG driver doesn't support 5 bands.  Must be 1 (grey), 3 (RGB) or 4 bands (CMYK).");
}

TEST_F(Audit, NoticesLinksThatWereNotPutInPlace) {
  Tile("a.tif");
  const std::string web = m_folder.Path("out\\googleearth_web.kml");
  EXPECT_FALSE(m_audit.Copy(m_folder.Path("none"), web));
  EXPECT_EQ(Result(), "could not write " + web);

  Tile("a.tif");
  EXPECT_FALSE(m_audit.RewriteLinks(web, "http://h", ""));
  EXPECT_EQ(Result(), "could not write the links of " + web);

  Tile("a.tif");
  WriteFile(web, "<kml/>");
  ASSERT_TRUE(DeleteFileA(m_folder.Path("out\\temp_web.kml").c_str()));
  EXPECT_TRUE(m_audit.RewriteLinks(web, "http://h", ""));
  EXPECT_EQ(Result(), "");

  WriteFile(m_folder.Path("out\\temp_web.kml"), "the user's own");
  EXPECT_TRUE(m_audit.RewriteLinks(web, "http://h", ""));
  EXPECT_EQ(Result(), "");
}

}  // namespace
