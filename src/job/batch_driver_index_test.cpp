// What a job leaves for several maps together.
#include "job/testing/driver_fixture.h"
#include "tiler/map_page.h"

namespace {

constexpr char kIndex[] = "D:\\out\\maps\\index.html";
constexpr char kDocument[] = "D:\\out\\maps\\googleearth_all.KML";
constexpr char kWebDocument[] = "D:\\out\\maps\\googleearth_all_web.KML";

class IndexOfMaps : public Driver {
 protected:
  void SetUp() override {
    Driver::SetUp();
    m_runner.onRun = [this](const ToolRun& run) {
      Make(run);
      if (run.tool != Tool::kTiler) return;
      const tiler::Pyramid pyramid({512, 300, 1000000.5, 2000000.25, 4.7, -4.7});
      const std::string number = run.output.substr(run.output.size() - 1);
      const bool isWebp = m_settings.tiles == tiler::TileFormat::kWebp;
      const std::string document = isWebp ? "" : "googleearth_loc.kml";
      m_files.Put(run.output + "\\leaflet.html", tiler::MapPage(pyramid, "Valley_" + number, {document, ""},
                                                                tiler::TileKinds(pyramid, m_settings.tiles)));
    };
  }
  bool Has(const std::string& path, const std::string& part) const {
    const auto found = m_steps.texts.find(path);
    return found != m_steps.texts.end() && found->second.find(part) != std::string::npos;
  }
};

TEST_F(IndexOfMaps, ShowsAllOfThem) {
  Start({MakeData("a"), MakeData("b")});
  for (const std::string number : {"0", "1"}) {
    EXPECT_TRUE(Has(kIndex, "{\"folder\": \"tile_" + number + "\", \"title\": \"Valley_" + number + "\""));
    EXPECT_TRUE(Has(kDocument, "<href>tile_" + number + "/googleearth_loc.kml</href>"));
  }
  EXPECT_TRUE(Has(kIndex, "<title>Valley</title>"));
  for (const tiler::PageFile& file : tiler::PageFiles()) {
    EXPECT_EQ(m_steps.texts[std::string("D:\\out\\maps\\leaflet\\") + file.name], file.content);
  }
  EXPECT_FALSE(m_steps.texts.contains(kWebDocument));
  EXPECT_EQ(m_host.report.maps.at(1).problem, "");
}

TEST_F(IndexOfMaps, LeadsToTheWebWhereThatIsKnown) {
  m_settings.webOutput = true;
  m_settings.targetUrl = "http://host/maps";
  Start({MakeData("a"), MakeData("b")});
  EXPECT_TRUE(Has(kWebDocument, "<href>http://host/maps/tile_1/googleearth_web.kml</href>"));
}

TEST_F(IndexOfMaps, IsNotMadeOfOne) {
  Start({MakeData("a")});
  EXPECT_TRUE(m_steps.texts.empty());
}

TEST_F(IndexOfMaps, LeavesOutWhatHasNoPage) {
  m_runner.onRun = [this, make = m_runner.onRun](const ToolRun& run) {
    if (run.orthophoto != "D:\\in\\a.tif") make(run);
  };
  Start({MakeData("a"), MakeData("b")});
  EXPECT_FALSE(Has(kIndex, "tile_0"));
  EXPECT_TRUE(Has(kIndex, "tile_1"));
}

TEST_F(IndexOfMaps, NeedsItsFilesOnce) {
  Start({MakeData("a"), MakeData("b"), MakeData("c")});
  EXPECT_EQ(CountEvents("write D:\\out\\maps\\leaflet\\map.js"), 1U);
  EXPECT_EQ(CountEvents("write D:\\out\\maps\\index.html"), 3U) << "of what there is until then";
}

TEST_F(IndexOfMaps, HasNoDocumentsOfMapsThatGoogleEarthDoesNotShow) {
  Start({MakeData("a"), MakeData("b")});
  m_files.Put(kDocument);
  m_steps.texts.clear();
  m_settings.tiles = tiler::TileFormat::kWebp;
  Start({MakeData("a"), MakeData("b")});
  EXPECT_TRUE(Has(kIndex, "\"kinds\": [\"webp\"]"));
  EXPECT_FALSE(m_files.Exists(kDocument)) << "of the earlier job";
  EXPECT_FALSE(m_files.Exists("D:\\out\\maps\\tile_1\\googleearth_loc.kml"));
  for (const MapOutcome& map : m_host.report.maps) EXPECT_EQ(map.state, MapState::kComplete) << map.problem;
  EXPECT_NE(m_host.report.log.find("no KML is made, because Google Earth does not show WebP images"),
            std::string::npos);
}

TEST_F(IndexOfMaps, LeavesAPageOfTheUsersOwn) {
  m_files.Put(kIndex, "<html>my own</html>");
  Start({MakeData("a"), MakeData("b")});
  EXPECT_TRUE(m_steps.texts.empty());
  m_files.Put(kIndex, "<script type=\"application/json\" id=\"maps-data\">[]</script>");
  Start({MakeData("a"), MakeData("b")});
  EXPECT_TRUE(Has(kIndex, "tile_1")) << "one of an earlier job is made anew";
}

TEST_F(IndexOfMaps, IsToldWhenItCouldNotBeWritten) {
  m_steps.unwritten.insert("D:\\out\\maps\\leaflet\\map.js");
  Start({MakeData("a"), MakeData("b")});
  EXPECT_EQ(m_host.report.maps.at(1).problem, std::string("could not write ") + kIndex);
  EXPECT_FALSE(m_steps.texts.contains(kIndex));
}

}  // namespace
