#include "publish/remote_survey.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "net/error_codes.h"
#include "publish/testing/fake_publish_host.h"
#include "publish/testing/fake_remote_server.h"

namespace {

using Texts = std::vector<std::string>;

constexpr char kDate[] = "2014/03/07 10:05";

class Survey : public testing::Test {
 protected:
  void AddFiles(const std::string& folder, const Texts& names) {
    for (const std::string& name : names) m_server.AddFile(folder + "/" + name);
  }
  void AddTiles(const std::string& folder, int count) {
    for (int i = 0; i < count; ++i) {
      AddFiles(folder + "/tile_" + std::to_string(i), {"a.jpg", "doc.kml", "googlemaps.html"});
    }
  }
  int Collect(const Texts& folders) {
    std::vector<RemoteRow> rows;
    for (const std::string& folder : folders) rows.push_back({folder, kDate});
    return m_survey.Collect(rows, m_entries);
  }
  // The entry of the folder "a".
  CRemoteDataEntry SurveyA() {
    CRemoteDataEntry entry("a", kDate);
    EXPECT_EQ(m_survey.SurveyFolder(entry), 1);
    return entry;
  }
  Texts Folders() const {
    Texts folders;
    for (const CRemoteDataEntry& entry : m_entries) folders.push_back(entry.m_folder);
    return folders;
  }

  FakeRemoteServer m_server;
  FakePublishHost m_host;
  RemoteSurvey m_survey{m_server, m_host};
  std::vector<CRemoteDataEntry> m_entries;
};

// --- One folder ------------------------------------------------------------------------------

TEST_F(Survey, FindsASingleDataSet) {
  AddFiles("/a", {"googlemaps.html", "preview.jpg", "doc.kml"});
  const CRemoteDataEntry entry = SurveyA();
  EXPECT_EQ(entry.m_jpg, Texts{"preview.jpg"});
  EXPECT_EQ(entry.m_kml, Texts{"doc.kml"});
  EXPECT_EQ(entry.m_googlemaps, Texts{"googlemaps.html"});
  EXPECT_TRUE(entry.IsComplete());
  EXPECT_EQ(m_server.commands, (Texts{"CWD a", "LIST", "CDUP"}));
  EXPECT_EQ(m_host.pumps, 3);
}

TEST_F(Survey, StopsOnceTheDataSetIsComplete) {
  AddFiles("/a", {"preview.jpg", "doc.kml", "googlemaps.html", "second.jpg"});
  const CRemoteDataEntry entry = SurveyA();
  EXPECT_EQ(entry.m_jpg, Texts{"preview.jpg"});
  EXPECT_EQ(entry.m_googlemaps, Texts{}) << "listed too late";
  EXPECT_EQ(m_host.pumps, 2);
}

TEST_F(Survey, GoesThroughAllTileFolders) {
  AddTiles("/a", 2);
  const CRemoteDataEntry entry = SurveyA();
  EXPECT_EQ(entry.m_jpg, (Texts{"a.jpg", "a.jpg"}));
  EXPECT_EQ(entry.m_kml, (Texts{"doc.kml", "doc.kml"}));
  EXPECT_EQ(entry.m_googlemaps, (Texts{"googlemaps.html", "googlemaps.html"}));
  EXPECT_EQ(m_server.commands, (Texts{"CWD a", "LIST", "CWD tile_0", "LIST", "CDUP", "LIST", "CWD tile_1",
                                      "LIST", "CDUP", "LIST", "CDUP"}));
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(Survey, StopsBetweenTileFoldersOnlyAtAnotherEntry) {
  AddTiles("/a", 1);
  AddFiles("/a", {"readme.txt"});
  AddTiles("/a", 2);
  EXPECT_EQ(SurveyA().m_kml, Texts{"doc.kml"}) << "tile_1 is listed behind the other entry";
  EXPECT_EQ(m_server.commands, (Texts{"CWD a", "LIST", "CWD tile_0", "LIST", "CDUP", "LIST", "CDUP"}));
}

TEST_F(Survey, TakesOnlyFoldersForTileFolders) {
  AddFiles("/a", {"tile_0.jpg", "tile_1.kml"});
  m_server.AddFile("/a/other/c.jpg");
  const CRemoteDataEntry entry = SurveyA();
  EXPECT_EQ(entry.m_jpg, Texts{"tile_0.jpg"});
  EXPECT_EQ(entry.m_kml, Texts{"tile_1.kml"});
  EXPECT_EQ(m_server.commands, (Texts{"CWD a", "LIST", "CDUP"}));
}

TEST_F(Survey, SortsFoldersThatAreNoTileFoldersAsFiles) {
  m_server.AddFolder("/a/my_kml");
  AddFiles("/a", {"my_tile_0.jpg"});
  m_server.AddFile("/a/Tile_0/b.jpg");
  const CRemoteDataEntry entry = SurveyA();
  EXPECT_EQ(entry.m_kml, Texts{"my_kml"});
  EXPECT_EQ(entry.m_jpg, Texts{"my_tile_0.jpg"});
  EXPECT_EQ(m_server.commands, (Texts{"CWD a", "LIST", "CDUP"}));
}

TEST_F(Survey, LooksOnlyAtWhatWasThereAtFirst) {
  AddTiles("/a", 2);
  m_server.Refill("/a", "more.kml", 3);
  const CRemoteDataEntry entry = SurveyA();
  EXPECT_EQ(m_server.Paths().size(), 3U + 6U + 3U);
  EXPECT_EQ(entry.m_kml, (Texts{"doc.kml", "doc.kml", "more.kml0"}));
}

TEST_F(Survey, BearsAListingThatShrinks) {
  AddTiles("/a", 2);
  AddFiles("/a/tile_0", {"b.jpg"});
  AddFiles("/a", {"x.kml", "y.kml"});
  m_server.onCommand = [this](const std::string& command) {
    if (command == "CWD tile_1") m_server.Delete({"/a/x.kml", "/a/y.kml"});
  };
  const CRemoteDataEntry entry = SurveyA();
  EXPECT_EQ(entry.m_kml, (Texts{"doc.kml", "doc.kml"}));
  EXPECT_EQ(m_host.pumps, 4);
  EXPECT_EQ(m_server.commands.back(), "CDUP");
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(Survey, OfAFolderThatCannotBeEnteredIsNone) {
  CRemoteDataEntry entry("a", kDate);
  EXPECT_EQ(m_survey.SurveyFolder(entry), 0);
  EXPECT_EQ(m_server.commands, Texts{"CWD a"});
}

TEST_F(Survey, EntersNoFolderWhoseNameLeadsElsewhere) {
  m_server.AddFile("/home/site/x");
  m_server.AddFile("/home/a/b/x");
  ASSERT_EQ(m_server.ChangeFolder("home"), kNetSuccess);
  m_server.commands.clear();
  for (const char* name : {"", ".", "..", "/", "/home", "a/b", "../home", "a\\b", "a\r\nDELE x"}) {
    CRemoteDataEntry entry(name, kDate);
    EXPECT_EQ(m_survey.SurveyFolder(entry), 0) << name;
  }
  EXPECT_EQ(m_server.commands, Texts{});
  EXPECT_EQ(m_server.CurrentFolder(), "/home");
}

TEST_F(Survey, EntersNoTileFolderWhoseNameLeadsElsewhere) {
  AddFiles("/tile_9", {"z.jpg", "z.kml"});
  for (const char* name : {"../tile_9", "/tile_9", "tile_0/..", "..\\tile_9"})
    m_server.AddLie("/a", name, true);
  m_server.AddLie("/a", "..", true);
  m_server.AddLie("/a", ".", true);
  AddTiles("/a", 1);
  const CRemoteDataEntry entry = SurveyA();
  EXPECT_EQ(entry.m_jpg, Texts{"a.jpg"});
  EXPECT_EQ(m_server.commands, (Texts{"CWD a", "LIST", "CWD tile_0", "LIST", "CDUP", "LIST", "CDUP"}));
}

TEST_F(Survey, GoesBackFromAFolderThatCannotBeListed) {
  AddFiles("/a", {"preview.jpg", "doc.kml"});
  // What an earlier listing has left is not looked at.
  m_server.AddLie("/", "old.jpg", false);
  ASSERT_EQ(m_server.List(), kNetSuccess);
  m_server.commands.clear();
  m_server.Fail("LIST /a", kNetListFailed);
  EXPECT_EQ(SurveyA().m_jpg, Texts{});
  EXPECT_EQ(m_server.commands, (Texts{"CWD a", "LIST", "CDUP"}));
}

TEST_F(Survey, PassesOverATileFolderThatCannotBeEntered) {
  AddTiles("/a", 2);
  m_server.Fail("CWD tile_0", kNetDenied);
  EXPECT_EQ(SurveyA().m_kml, Texts{"doc.kml"});
  EXPECT_EQ(m_server.commands,
            (Texts{"CWD a", "LIST", "CWD tile_0", "CWD tile_1", "LIST", "CDUP", "LIST", "CDUP"}));
}

TEST_F(Survey, PassesOverATileFolderThatCannotBeListed) {
  AddTiles("/a", 2);
  m_server.Fail("LIST /a/tile_0", kNetListFailed);
  EXPECT_EQ(SurveyA().m_kml, Texts{"doc.kml"});
  EXPECT_EQ(m_server.commands, (Texts{"CWD a", "LIST", "CWD tile_0", "LIST", "CDUP", "LIST", "CWD tile_1",
                                      "LIST", "CDUP", "LIST", "CDUP"}));
}

TEST_F(Survey, TakesNoNamesOfAnotherListingForThoseOfATileFolder) {
  AddFiles("/a", {"top.jpg"});
  AddTiles("/a", 1);
  m_server.Fail("LIST /a/tile_0", kNetListFailed);
  EXPECT_EQ(SurveyA().m_jpg, Texts{"top.jpg"});
}

TEST_F(Survey, EntersNoFolderWithoutAConnection) {
  CRemoteDataEntry entry("a", kDate);
  m_server.AddFolder("/a");
  m_server.Disconnect();
  EXPECT_EQ(m_survey.SurveyFolder(entry), 0);
  EXPECT_EQ(m_server.commands, Texts{});
}

TEST_F(Survey, EndsWhenTheFolderCannotBeListedAgain) {
  AddTiles("/a", 2);
  m_server.Fail("LIST /a", kNetListFailed, 1, 1);
  EXPECT_EQ(SurveyA().m_kml, Texts{"doc.kml"});
  EXPECT_EQ(m_server.commands, (Texts{"CWD a", "LIST", "CWD tile_0", "LIST", "CDUP", "LIST", "CDUP"}));
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(Survey, EndsWhenThereIsNoWayBackFromATileFolder) {
  AddTiles("/a", 2);
  m_server.Fail("CDUP /a/tile_0", kNetDenied, 1);
  EXPECT_EQ(SurveyA().m_kml, Texts{"doc.kml"});
  EXPECT_EQ(m_server.commands, (Texts{"CWD a", "LIST", "CWD tile_0", "LIST", "CDUP", "CDUP"}));
  EXPECT_EQ(m_server.CurrentFolder(), "/a") << "which is why the collection ends, too";
}

TEST_F(Survey, LeavesErrorsToTheClient) {
  AddTiles("/a", 2);
  m_server.Fail("CWD tile_0", kNetDenied);
  m_server.Fail("LIST /a/tile_1", kNetListFailed);
  Collect({"a", "none"});
  EXPECT_TRUE(m_server.reportedErrors.empty());
}

// --- All folders -----------------------------------------------------------------------------

TEST_F(Survey, CollectsInTheOrderOfTheRows) {
  AddFiles("/b", {"p.jpg", "d.kml"});
  AddFiles("/a", {"p.jpg"});
  m_server.AddFile("/file");
  m_entries.resize(7);
  EXPECT_EQ(Collect({"b", "file", "a"}), 2);
  EXPECT_TRUE(m_survey.HasSucceeded());
  EXPECT_EQ(Folders(), (Texts{"b", "a"}));
  EXPECT_EQ(m_entries[0].m_date, kDate);
  EXPECT_EQ(m_entries[0].m_kml, Texts{"d.kml"});
  EXPECT_EQ(m_entries[1].m_jpg, Texts{"p.jpg"}) << "incomplete, but gathered";
  EXPECT_EQ(m_server.commands, (Texts{"LIST", "CWD b", "LIST", "CDUP", "CWD file", "CWD a", "LIST", "CDUP"}));
  EXPECT_EQ(m_host.range, 3);
  EXPECT_EQ(m_host.positions, (std::vector<int>{0, 0, 1, 2, 0}));
}

TEST_F(Survey, CollectsNothingFromAnEmptyFolder) {
  m_entries.resize(1);
  EXPECT_EQ(Collect({}), 0);
  EXPECT_TRUE(m_survey.HasSucceeded());
  EXPECT_TRUE(m_entries.empty());
  EXPECT_EQ(m_host.range, 0);
}

TEST_F(Survey, CollectsNothingWhenTheFolderCannotBeListed) {
  AddFiles("/a", {"p.jpg", "d.kml"});
  m_server.Fail("LIST /", kNetListFailed, 1);
  m_entries.resize(1);
  EXPECT_EQ(Collect({"a"}), 0);
  EXPECT_FALSE(m_survey.HasSucceeded());
  EXPECT_FALSE(m_survey.HasLostItsWay());
  EXPECT_EQ(m_entries.size(), 1U);
  EXPECT_EQ(m_server.commands, Texts{"LIST"});
  EXPECT_EQ(m_host.range, -1);
  EXPECT_EQ(Collect({"a"}), 1) << "the next time it can";
  EXPECT_TRUE(m_survey.HasSucceeded());
}

TEST_F(Survey, CollectsNothingWithoutAConnection) {
  m_server.Disconnect();
  EXPECT_EQ(Collect({"a"}), 0);
  EXPECT_FALSE(m_survey.HasSucceeded());
  EXPECT_EQ(m_server.commands, Texts{});
}

TEST_F(Survey, EntersNoFurtherFolderWhenThereIsNoWayBack) {
  for (const char* folder : {"/a", "/a/b", "/b"}) AddFiles(folder, {"p.jpg", "d.kml"});
  m_server.Fail("CDUP /a", kNetDenied);
  EXPECT_EQ(Collect({"a", "b"}), 1);
  EXPECT_FALSE(m_survey.HasSucceeded()) << "the page would be written into the folder a";
  EXPECT_TRUE(m_survey.HasLostItsWay());
  EXPECT_EQ(m_server.commands, (Texts{"LIST", "CWD a", "LIST", "CDUP"}));
  EXPECT_EQ(m_host.positions.back(), 0);
}

TEST_F(Survey, FindsItsWayAgainTheNextTime) {
  m_server.AddFolder("/a");
  m_server.Fail("CDUP /a", kNetDenied, 1);
  Collect({"a"});
  ASSERT_TRUE(m_survey.HasLostItsWay());
  ASSERT_EQ(m_server.GoToParent(), kNetSuccess);
  EXPECT_EQ(Collect({"a"}), 1);
  EXPECT_FALSE(m_survey.HasLostItsWay());
  EXPECT_TRUE(m_survey.HasSucceeded());
}

// Whatever the step at which the user aborts: no further folder is entered, and the way back is gone.
TEST_F(Survey, EndsAtAnyStepWhenAborted) {
  AddTiles("/a", 2);
  AddFiles("/a", {"x"});
  AddTiles("/b", 1);
  Collect({"a", "b"});
  const Texts all = m_server.commands;
  const int allPumps = m_host.pumps;
  ASSERT_EQ(allPumps, 4);
  for (size_t step = 1; step <= all.size(); ++step) {
    m_host.aborted = false;
    m_server.commands.clear();
    m_server.onCommand = [this, step](const std::string&) {
      if (m_server.commands.size() == step) m_host.aborted = true;
    };
    const int count = Collect({"a", "b"});
    EXPECT_EQ(static_cast<size_t>(count), m_entries.size());
    EXPECT_EQ(m_server.CurrentFolder(), "/") << step;
    EXPECT_TRUE(m_survey.HasSucceeded()) << "what was gathered is written";
    EXPECT_LE(m_server.commands.size(), step + 4) << "LIST, CDUP, LIST, CDUP at most";
    EXPECT_EQ(m_host.positions.back(), 0);
    // Whatever was sent is the beginning of the whole run and then only the way back.
    const size_t same = static_cast<size_t>(
        std::mismatch(m_server.commands.begin(), m_server.commands.end(), all.begin(), all.end()).first -
        m_server.commands.begin());
    for (size_t i = same; i < m_server.commands.size(); ++i) EXPECT_EQ(m_server.commands[i], "CDUP") << step;
  }
}

TEST_F(Survey, EndsAtAnyPumpWhenAborted) {
  AddTiles("/a", 2);
  AddFiles("/a", {"x"});
  for (int pump = 1; pump <= 3; ++pump) {
    m_host.aborted = false;
    m_host.pumps = 0;
    m_host.onPump = [this, pump] {
      if (m_host.pumps == pump) m_host.aborted = true;
    };
    EXPECT_EQ(Collect({"a", "b"}), 1);
    EXPECT_EQ(m_host.pumps, pump);
    EXPECT_EQ(m_entries[0].m_kml.size(), static_cast<size_t>(std::min(pump, 2)))
        << "the fetched entry counts";
  }
}

TEST_F(Survey, EntersNothingOnceAborted) {
  m_server.AddFolder("/a");
  m_host.aborted = true;
  EXPECT_EQ(Collect({"a", "a"}), 0);
  EXPECT_EQ(m_server.commands, Texts{"LIST"});
  EXPECT_EQ(m_host.positions, (std::vector<int>{0, 0, 1, 0}));
}

TEST_F(Survey, EndsAtAnyStepWhenTheConnectionIsLost) {
  AddTiles("/a", 2);
  AddTiles("/b", 1);
  Collect({"a", "b"});
  const size_t all = m_server.commands.size();
  for (size_t step = 0; step < all; ++step) {
    FakeRemoteServer server = m_server;
    server.commands.clear();
    server.DisconnectAfter(static_cast<int>(step));
    RemoteSurvey survey(server, m_host);
    survey.Collect({{"a", kDate}, {"b", kDate}}, m_entries);
    EXPECT_LE(server.commands.size(), step + 4) << step;
    EXPECT_FALSE(survey.HasSucceeded()) << step;
  }
}

}  // namespace
