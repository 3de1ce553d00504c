#include "mirror/publish_plan.h"

#include <gtest/gtest.h>

#include "mirror/staged_name.h"

namespace mirror {

namespace {

constexpr std::uint64_t kSize = 12;

class PublishPlanTest : public testing::Test {
 protected:
  void PutLocal(const std::string& path) {
    m_local.files.push_back({.path = path, .source = path, .state = {.size = kSize, .time = 5}});
  }
  void PutRemote(const std::string& path, std::optional<std::uint64_t> size = kSize,
                 EntryKind kind = EntryKind::kFile) {
    m_remote[path] = {.name = path.substr(path.rfind('/') + 1), .kind = kind, .size = size};
  }
  void NoteSent(const std::string& path, bool isPlaced, std::int64_t time = 5) {
    m_sent[path] = {.checksum = "sum", .state = {.size = kSize, .time = time}, .isPlaced = isPlaced};
  }
  PublishPlan Plan() {
    return MakePlan(m_local, m_remote, m_sent, [this](const LocalFile& file) {
      m_asked.push_back(file.path);
      return m_checksum;
    });
  }
  PlannedFile Only() {
    const PublishPlan plan = Plan();
    EXPECT_EQ(plan.files.size(), 1U);
    return plan.files.empty() ? PlannedFile() : plan.files[0];
  }

  LocalTree m_local;
  RemoteTree m_remote;
  SentFiles m_sent;
  std::optional<std::string> m_checksum = "sum";
  std::vector<std::string> m_asked;
};

TEST(RankOf, IsHigherTheLaterAFileIsToBeSeen) {
  EXPECT_EQ(RankOf("18/1/2.png"), 0);
  EXPECT_EQ(RankOf("Valley.JPG"), 0);
  EXPECT_LT(RankOf("tile_0/18/1/2.kml"), RankOf("tile_0/leaflet.html"));
  EXPECT_LT(RankOf("leaflet/map.js"), RankOf("leaflet.html"));
  EXPECT_LT(RankOf("tile_0/leaflet.html"), RankOf("index.html"));
  EXPECT_EQ(RankOf("googleearth_all.KML"), 10);
  EXPECT_EQ(RankOf("a/b/c/d/e/f/g/h/i/j/k/l/m.kml"), 1);
}

TEST_F(PublishPlanTest, AsksForAChecksumOnlyWhereThereIsADoubt) {
  PutLocal("a.png");
  PutRemote("a.png");
  NoteSent("a.png", true);
  EXPECT_EQ(Plan().unchanged, std::vector<std::string>{"a.png"});
  EXPECT_EQ(m_asked.size(), 0U);
  NoteSent("a.png", true, 6);
  EXPECT_EQ(Plan().unchanged, std::vector<std::string>{"a.png"});
  EXPECT_EQ(m_asked.size(), 1U);
  m_checksum = "other";
  EXPECT_EQ(Plan().files.size(), 1U);
  m_checksum = std::nullopt;
  EXPECT_EQ(Plan().files.size(), 1U) << "it shows when it is sent";
}

TEST_F(PublishPlanTest, SendsWhatTheServerHasOtherwise) {
  PutLocal("a.png");
  NoteSent("a.png", true);
  EXPECT_FALSE(Only().replaces) << "it is missing";
  PutRemote("a.png", kSize - 1);
  EXPECT_TRUE(Only().replaces);
  EXPECT_FALSE(Only().isStaged) << "no page shows it yet";
  PutRemote("a.png", std::nullopt);
  Only();
}

TEST_F(PublishPlanTest, TakesUpWhatWaitsOnTheServer) {
  PutLocal("a.html");
  PutRemote("a.html");
  PutRemote(StagedName("a.html"));
  NoteSent("a.html", false);
  EXPECT_TRUE(Only().isSent);
  EXPECT_EQ(Plan().BytesToSend(), 0U);
  EXPECT_EQ(Plan().FilesToSend(), 0U);
  PutRemote(StagedName("a.html"), 3);
  EXPECT_FALSE(Only().isSent) << "half of it";
  PutRemote(StagedName("a.html"));
  NoteSent("a.html", true);
  EXPECT_EQ(Plan().leftovers, std::vector<std::string>{StagedName("a.html")});
  EXPECT_EQ(Plan().unchanged.size(), 1U);
}

TEST_F(PublishPlanTest, StagesEverythingOnceAPageIsThere) {
  PutLocal("1/a.png");
  PutLocal("a.html");
  m_local.folders = {"1"};
  PutRemote("1", std::nullopt, EntryKind::kFolder);
  EXPECT_FALSE(Plan().files[0].isStaged);
  EXPECT_TRUE(Plan().files[1].isStaged);
  PutRemote("a.html", 1);
  EXPECT_TRUE(Plan().files[0].isStaged);
}

TEST_F(PublishPlanTest, DoesNothingBelowWhatIsNoFolder) {
  m_local.folders = {"1", "1/2", "3"};
  PutLocal("1/2/a.png");
  PutLocal("3/a.png");
  PutRemote("1", std::nullopt, EntryKind::kLink);
  const PublishPlan plan = Plan();
  EXPECT_EQ(plan.problems.size(), 1U);
  EXPECT_EQ(plan.newFolders, std::vector<std::string>{"3"});
  ASSERT_EQ(plan.files.size(), 1U);
  EXPECT_EQ(plan.files[0].file.path, "3/a.png");
  EXPECT_EQ(plan.extraFiles.size(), 0U);
}

TEST_F(PublishPlanTest, IsNotWholeWhenTheLocalFolderIsNot) {
  m_local.problems = {"a: it is no file"};
  EXPECT_EQ(Plan().problems, m_local.problems);
}

}  // namespace

}  // namespace mirror
