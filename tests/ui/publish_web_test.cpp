// From an orthophoto to what visitors find: a job, its upload to a real server and the index page. What is
// on the server then is looked at by tests/publish/published_site_test.py, which starts this program.
//
// Needs in the environment the server (see ServerLogin) and MOSAICON_WEB_URL, under which a web server
// shows what it calls "/".
#include <algorithm>
#include <filesystem>

#include "ui/publish_fixture.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char kName[] = "harbour";
constexpr int kWidth = 700;  // pixels; several zoom levels of tiles
constexpr int kHeight = 500;

class Web : public PublishTest {
 protected:
  static std::string Url() { return TextFromEnvironment("MOSAICON_WEB_URL"); }

  // The button is hidden, but works.
  void UpdateIndex() {
    FtpItem(IDC_FTP_UPDATE_INDEX).Click();
    EXPECT_EQ(NextMessage(), (Told{"Remote index updated", BoxIcon::kInformation}));
    EXPECT_TRUE(LooksConnected());
  }
};

TEST_F(Web, GetsAFinishedJobAndItsIndexPage) {
  Item(IDC_GOOGLE_KEY).SetText("no-key");
  const std::string input = MakeOrthophoto("harbour.tif", kWidth, kHeight);
  const std::string target = Path(kName);
  const auto report =
      RunJob({.orthophoto = input, .target = target, .title = "The harbour", .url = Url() + "/" + kName});
  ASSERT_TRUE(report);
  ASSERT_EQ(report->log, "- " + input + ": OK\r\n");
  const Tree local = ReadTree(target);
  for (const char* name :
       {"googleearth_web.kml", "googleearth_loc.kml", "googlemaps.html", "leaflet.html", "The_harbour.jpg"}) {
    EXPECT_TRUE(local.contains(name)) << name;
  }

  // The index page lies beside the folder, so its address is that of the folder above.
  ASSERT_TRUE(OpenUpload(target, Url()));
  ASSERT_TRUE(Connect(ServerLogin()));
  FtpItem(IDC_FTP_UPLOAD).Click();
  const auto isFile = [](const auto& entry) { return !entry.first.ends_with('\\'); };
  const auto files = std::count_if(local.begin(), local.end(), isFile);
  EXPECT_EQ(NextMessage(), (Told{std::to_string(files) + " file uploaded", BoxIcon::kInformation}));
  EXPECT_EQ(Differences(ReadTree(Remote(kName)), local), Strings());
  EXPECT_EQ(Names(), Strings{kName});

  UpdateIndex();
  EXPECT_EQ(Names(), Strings{kName}) << "the index page is no data set";
  Tree withIndex = ReadTree(Remote());
  const std::string page = withIndex["index.html"];
  EXPECT_NE(page.find(std::string("src=\"") + kName + "/The_harbour.jpg\""), std::string::npos) << page;
  // A second one takes its place.
  UpdateIndex();
  EXPECT_EQ(Differences(ReadTree(Remote(kName)), local), Strings());
  EXPECT_TRUE(PathExists(Remote("index.html")));
}

}  // namespace
