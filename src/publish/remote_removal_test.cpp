#include "publish/remote_removal.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "net/error_codes.h"
#include "publish/fake_publish_host.h"
#include "publish/fake_remote_server.h"

namespace {

using Lines = std::vector<std::string>;

class RemoteRemovalTest : public testing::Test {
 protected:
  // Everything beside the folder must stay.
  void SetUp() override {
    m_server.AddFile("/keep/me");
    m_server.AddFolder("/x");
  }
  void RemoveX() { m_removal.RemoveContents("x"); }
  void ExpectAllElseKept() {
    EXPECT_TRUE(m_server.Has("/keep/me"));
    EXPECT_EQ(std::count(m_server.commands.begin(), m_server.commands.end(), "DELE "), 0);
  }
  auto Count(const std::string& command) const {
    return std::count(m_server.commands.begin(), m_server.commands.end(), command);
  }

  FakeRemoteServer m_server;
  FakePublishHost m_host;
  RemoteRemoval m_removal{m_server, m_host};
};

TEST_F(RemoteRemovalTest, LooksIntoAnEmptyFolderOnce) {
  RemoveX();
  EXPECT_EQ(m_server.commands, (Lines{"CWD x", "LIST", "CDUP"}));
  EXPECT_TRUE(m_server.reportedErrors.empty());
  EXPECT_TRUE(m_removal.IsSound());
}

TEST_F(RemoteRemovalTest, ListsAgainAfterEachDeletion) {
  m_server.AddFile("/x/a");
  m_server.AddFile("/x/b");
  RemoveX();
  EXPECT_EQ(m_server.commands, (Lines{"CWD x", "LIST", "LIST", "DELE a", "LIST", "DELE b", "LIST", "CDUP"}));
  EXPECT_EQ(m_host.statuses, (Lines{"deleting x\\a", "deleting x\\b"}));
  EXPECT_EQ(m_host.pumps, 3);
  // The empty listing at the end.
  EXPECT_EQ(m_server.reportedErrors, std::vector<int>{kNetBadIndex});
}

TEST_F(RemoteRemovalTest, RemovesATree) {
  m_server.AddFile("/x/a/b/c");
  m_server.AddFile("/x/a/d");
  m_server.AddFolder("/x/e");
  m_server.AddFile("/x/f");
  RemoveX();
  EXPECT_TRUE(m_removal.IsSound());
  EXPECT_EQ(m_server.Paths(), (Lines{"/keep/", "/keep/me", "/x/"}));
  EXPECT_EQ(m_host.statuses, (Lines{"deleting b\\c", "deleting a\\d", "deleting x\\f"}));
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(RemoteRemovalTest, NeverFollowsWhatAServerMakesUp) {
  for (const char* name : {".", "..", "/keep", "../keep", "keep/me", "..\\keep", "a\r", "b\x1B", ""}) {
    m_server.AddLie("/x", name, true);
    m_server.AddLie("/x", name, false);
  }
  m_server.AddFile("/x/a");
  RemoveX();
  ExpectAllElseKept();
  EXPECT_TRUE(m_removal.IsSound());
  EXPECT_EQ(m_server.Paths(), (Lines{"/keep/", "/keep/me", "/x/"}));
  EXPECT_EQ(m_server.commands, (Lines{"CWD x", "LIST", "LIST", "DELE a", "LIST", "CDUP"}));
}

TEST_F(RemoteRemovalTest, DeletesLinksAndDoesNotFollowThem) {
  m_server.AddFile("/x/link");
  m_server.AddLie("/x", "link -> /keep", false);
  m_server.onCommand = [this](const std::string& command) {
    // The link is gone from the listing once it is deleted.
    if (command == "DELE link") m_server.ForgetLies();
  };
  RemoveX();
  ExpectAllElseKept();
  EXPECT_EQ(m_server.commands, (Lines{"CWD x", "LIST", "LIST", "DELE link", "LIST", "CDUP"}));
}

TEST_F(RemoteRemovalTest, DeletesAFileWhoseNameLooksLikeALink) {
  m_server.AddFile("/x/a -> b");
  RemoveX();
  EXPECT_EQ(m_server.commands, (Lines{"CWD x", "LIST", "LIST", "DELE a -> b", "LIST", "CDUP"}));
}

TEST_F(RemoteRemovalTest, GivesUpWhatCannotBeDeletedTwice) {
  m_server.AddFile("/x/a");
  m_server.AddFile("/x/b");
  m_server.Fail("DELE a", 10);
  RemoveX();
  EXPECT_FALSE(m_removal.IsSound());
  EXPECT_EQ(Count("DELE a"), 2);
  EXPECT_EQ(Count("DELE b"), 0);
  EXPECT_EQ(m_host.statuses.back(), "cannot delete x\\a");
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(RemoteRemovalTest, ForgivesASingleFailure) {
  m_server.AddFile("/x/a");
  m_server.AddFile("/x/b");
  m_server.Fail("DELE a", 10, 1);
  m_server.Fail("DELE b", 10, 1);
  RemoveX();
  EXPECT_TRUE(m_removal.IsSound());
  EXPECT_EQ(m_server.Paths(), (Lines{"/keep/", "/keep/me", "/x/"}));
}

TEST_F(RemoteRemovalTest, GivesUpAFolderThatCannotBeRemoved) {
  m_server.AddFolder("/x/a");
  m_server.Fail("RMD a", 10);
  RemoveX();
  EXPECT_FALSE(m_removal.IsSound());
  EXPECT_EQ(Count("RMD a"), 2);
  EXPECT_EQ(m_host.statuses.back(), "cannot delete x\\a");
}

TEST_F(RemoteRemovalTest, GivesUpAFolderThatCannotBeEntered) {
  m_server.AddFile("/x/a/b");
  m_server.Fail("CWD a", 10);
  m_server.Fail("RMD a", 10);
  RemoveX();
  EXPECT_FALSE(m_removal.IsSound());
  EXPECT_EQ(Count("CWD a"), 2);
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

// Not twice as many attempts with every level.
TEST_F(RemoteRemovalTest, TriesWhatIsDeepDownOnlyTwiceInAll) {
  m_server.AddFile("/x/a/b/c/d/e/f");
  m_server.Fail("DELE f", 10);
  RemoveX();
  EXPECT_FALSE(m_removal.IsSound());
  EXPECT_EQ(Count("DELE f"), 2);
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(RemoteRemovalTest, EndsInFoldersWithoutEnd) {
  std::string path = "/x";
  for (int i = 0; i < 500; ++i) path += "/a";
  m_server.AddFolder(path);
  RemoveX();
  EXPECT_FALSE(m_removal.IsSound());
  EXPECT_EQ(m_host.statuses.back(), "too many folders in each other: a");
  EXPECT_LT(m_server.commands.size(), 1000U);
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(RemoteRemovalTest, GoesOnWhileAFolderGrowsUntilItIsAborted) {
  m_server.AddFile("/x/a");
  m_server.Refill("/x", "new");
  m_host.onPump = [this] { m_host.aborted = m_host.pumps == 100; };
  RemoveX();
  EXPECT_EQ(m_host.pumps, 100);
  EXPECT_EQ(m_host.statuses.size(), 99U);
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(RemoteRemovalTest, DeletesNothingMoreAfterAnAbort) {
  m_server.AddFile("/x/a/b");
  m_server.AddFile("/x/c");
  m_server.onCommand = [this](const std::string& command) { m_host.aborted |= command == "DELE b"; };
  RemoveX();
  EXPECT_EQ(m_server.commands,
            (Lines{"CWD x", "LIST", "LIST", "CWD a", "LIST", "LIST", "DELE b", "CDUP", "CDUP"}));
  EXPECT_TRUE(m_server.Has("/x/a"));
  EXPECT_TRUE(m_server.Has("/x/c"));
}

TEST_F(RemoteRemovalTest, DoesNothingWhenAbortedBefore) {
  m_host.aborted = true;
  RemoveX();
  EXPECT_TRUE(m_server.commands.empty());
}

TEST_F(RemoteRemovalTest, DeletesNothingWhereItDoesNotBelongWhenItCannotGoBack) {
  m_server.AddFile("/x/a/b");
  m_server.AddFile("/x/c");
  m_server.Fail("CDUP /x/a", 10);
  RemoveX();
  EXPECT_FALSE(m_removal.IsSound());
  EXPECT_EQ(Count("RMD a"), 0);
  EXPECT_EQ(Count("DELE c"), 0);
}

TEST_F(RemoteRemovalTest, LeavesAFolderThatCannotBeEntered) {
  m_removal.RemoveContents("missing");
  EXPECT_EQ(m_server.commands, Lines{"CWD missing"});
}

TEST_F(RemoteRemovalTest, LeavesAFolderThatCannotBeListed) {
  m_server.AddFile("/x/a");
  m_server.Fail("LIST /x", 50);
  RemoveX();
  EXPECT_EQ(m_server.commands, (Lines{"CWD x", "LIST", "CDUP"}));
}

TEST_F(RemoteRemovalTest, EndsWhenTheConnectionIsLost) {
  for (int commands = 0; commands < 20; ++commands) {
    FakeRemoteServer server;
    server.AddFile("/x/a/b");
    server.AddFile("/x/c");
    server.DisconnectAfter(commands);
    RemoteRemoval(server, m_host).RemoveContents("x");
    EXPECT_LT(server.commands.size(), 20U) << commands;
  }
}

}  // namespace
