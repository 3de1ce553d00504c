#include "publish/remote_removal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "net/error_codes.h"
#include "publish/testing/fake_publish_host.h"
#include "publish/testing/fake_remote_server.h"

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
  auto Count(const std::string& command) const {
    return std::count(m_server.commands.begin(), m_server.commands.end(), command);
  }
  void ExpectAllElseKept() {
    EXPECT_TRUE(m_server.Has("/keep/me"));
    EXPECT_EQ(Count("DELE"), 0) << "without a name";
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

// --- Links that the server lists as folders --------------------------------------------------

TEST_F(RemoteRemovalTest, TriesToDeleteBeforeItEnters) {
  m_server.AddFile("/x/a/b");
  RemoveX();
  EXPECT_EQ(m_server.commands, (Lines{"CWD x", "LIST", "LIST", "DELE a", "PWD", "CWD a", "PWD", "LIST",
                                      "LIST", "DELE b", "LIST", "CDUP", "PWD", "RMD a", "LIST", "CDUP"}));
}

TEST_F(RemoteRemovalTest, DeletesALinkThatLooksLikeAFolder) {
  m_server.AddLink("/x/link", "/keep");
  m_server.AddFile("/x/z");
  RemoveX();
  ExpectAllElseKept();
  EXPECT_TRUE(m_removal.IsSound());
  EXPECT_EQ(m_removal.PassedOver(), "");
  EXPECT_EQ(m_server.commands,
            (Lines{"CWD x", "LIST", "LIST", "DELE link", "LIST", "DELE z", "LIST", "CDUP"}));
}

TEST_F(RemoteRemovalTest, DeletesNothingBehindALinkThatTheServerKeeps) {
  for (const char* target : {"/keep", "/xy", "/", "/x"}) {
    FakeRemoteServer server;
    server.AddFile("/keep/me");
    server.AddFile("/xy/me");
    server.AddLink("/x/link", target);
    server.AddFile("/x/z");
    server.Fail("DELE link", kNetDenied);
    RemoteRemoval removal(server, m_host);
    removal.RemoveContents("x");
    EXPECT_EQ(server.Paths(), (Lines{"/keep/", "/keep/me", "/xy/", "/xy/me", "/x/", "/x/link"})) << target;
    EXPECT_TRUE(removal.IsSound()) << target;
    EXPECT_EQ(removal.PassedOver(), "x\\link") << target;
    EXPECT_EQ(server.CurrentFolder(), "/") << target;
  }
}

TEST_F(RemoteRemovalTest, StopsWhereALinkLeadsWhenThereIsNoWayBack) {
  m_server.AddLink("/x/link", "/keep");
  m_server.AddFile("/x/z");
  m_server.Fail("DELE link", kNetDenied);
  m_server.Fail("CWD /x", kNetDenied);
  RemoveX();
  ExpectAllElseKept();
  EXPECT_FALSE(m_removal.IsSound());
  EXPECT_EQ(m_host.statuses.back(), "cannot go back to /x");
  EXPECT_EQ(Count("DELE z"), 0);
}

// CDUP leads from a link's target to the folder above that.
TEST_F(RemoteRemovalTest, StopsWhenTheWayBackEndsElsewhere) {
  m_server.AddFile("/x/deep/target/a");
  m_server.AddLink("/x/link", "/x/deep/target");
  m_server.AddFile("/x/z");
  m_server.Fail("DELE", kNetDenied, 1);  // "DELE deep"
  m_server.Fail("DELE link", kNetDenied);
  m_server.Fail("CWD deep", kNetDenied);
  RemoveX();
  EXPECT_FALSE(m_removal.IsSound());
  EXPECT_EQ(m_host.statuses.back(), "cannot go back to /x");
  EXPECT_EQ(Count("DELE z"), 0);
}

TEST_F(RemoteRemovalTest, EntersNoFolderInTheFolderWhenItCannotTellWhereItIs) {
  m_server.AddFile("/x/a/b");
  m_server.AddFolder("/x/empty");
  m_server.AddFile("/x/c");
  m_server.Fail("PWD", kNetDenied);
  RemoveX();
  EXPECT_EQ(Count("CWD a"), 0);
  EXPECT_EQ(m_server.Paths(), (Lines{"/keep/", "/keep/me", "/x/", "/x/a/", "/x/a/b"}));
  EXPECT_EQ(m_removal.PassedOver(), "x\\a");
}

// A server that writes its current folder in a way of its own.
class ServerWithOwnWords : public FakeRemoteServer {
 public:
  int CurrentFolder(std::string& path) override {
    const int code = FakeRemoteServer::CurrentFolder(path);
    path = inOwnWords(path);
    return code;
  }
  std::function<std::string(const std::string& path)> inOwnWords;
};

TEST_F(RemoteRemovalTest, EntersNoFolderInTheFolderWhenTheServerTellsNothing) {
  ServerWithOwnWords server;
  server.inOwnWords = [](const std::string&) { return ""; };
  server.AddFile("/x/a/b");
  RemoteRemoval removal(server, m_host);
  removal.RemoveContents("x");
  EXPECT_EQ(server.commands, (Lines{"CWD x", "LIST", "LIST", "DELE a", "PWD", "RMD a", "LIST", "CDUP"}));
  EXPECT_EQ(removal.PassedOver(), "x\\a");
}

TEST_F(RemoteRemovalTest, GoesIntoNoCircleWhereFoldersAreWrittenWithASlash) {
  ServerWithOwnWords server;
  server.inOwnWords = [](const std::string& path) { return path + "/"; };
  server.AddLink("/x/link", "/x");
  server.AddFile("/x/a/b");
  server.Fail("DELE link", kNetDenied);
  RemoteRemoval removal(server, m_host);
  removal.RemoveContents("x");
  EXPECT_TRUE(removal.IsSound());
  EXPECT_EQ(removal.PassedOver(), "x\\link");
  EXPECT_EQ(server.Paths(), (Lines{"/x/", "/x/link"}));
}

TEST_F(RemoteRemovalTest, TouchesNothingOutsideWhereTheServerTellsTheSamePlaceEverywhere) {
  ServerWithOwnWords server;
  server.inOwnWords = [](const std::string&) { return "/"; };
  server.AddFile("/precious");
  server.AddFolder("/other");
  server.AddFile("/x/a/b");
  server.AddFile("/x/c");
  RemoteRemoval removal(server, m_host);
  removal.RemoveContents("x");
  const Lines left = server.Paths();
  for (const char* path : {"/precious", "/other/"}) {
    EXPECT_EQ(std::count(left.begin(), left.end(), path), 1) << path;
  }
}

// --- What the server refuses -----------------------------------------------------------------

TEST_F(RemoteRemovalTest, PassesOverWhatIsRefused) {
  for (const char* name : {"/x/a", "/x/b", "/x/c", "/x/d"}) m_server.AddFile(name);
  m_server.Fail("DELE a", 10);
  m_server.Fail("DELE c", 10);
  RemoveX();
  EXPECT_EQ(m_server.Paths(), (Lines{"/keep/", "/keep/me", "/x/", "/x/a", "/x/c"}));
  EXPECT_EQ(Count("DELE a"), 1);
  EXPECT_EQ(m_host.statuses, (Lines{"deleting x\\a", "cannot delete x\\a", "deleting x\\b", "deleting x\\c",
                                    "cannot delete x\\c", "deleting x\\d"}));
  EXPECT_TRUE(m_removal.IsSound());
  EXPECT_EQ(m_removal.PassedOver(), "x\\a and 1 more");
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(RemoteRemovalTest, PassesOverALinkThatIsRefused) {
  m_server.AddLie("/x", "link -> /keep", false);
  RemoveX();
  EXPECT_EQ(m_server.commands, (Lines{"CWD x", "LIST", "LIST", "DELE link", "LIST", "CDUP"}));
  EXPECT_EQ(m_removal.PassedOver(), "x\\link -> /keep");
}

TEST_F(RemoteRemovalTest, PassesOverAFolderThatCannotBeRemoved) {
  m_server.AddFolder("/x/a");
  m_server.AddFile("/x/b");
  m_server.Fail("RMD a", 10);
  RemoveX();
  EXPECT_EQ(Count("RMD a"), 1);
  EXPECT_FALSE(m_server.Has("/x/b"));
  EXPECT_EQ(m_removal.PassedOver(), "x\\a");
}

TEST_F(RemoteRemovalTest, PassesOverAFolderThatCannotBeEntered) {
  m_server.AddFile("/x/a/b");
  m_server.AddFile("/x/c");
  m_server.Fail("CWD a", 10);
  RemoveX();
  EXPECT_EQ(Count("CWD a"), 1);
  EXPECT_EQ(Count("RMD a"), 1);
  EXPECT_FALSE(m_server.Has("/x/c"));
  EXPECT_EQ(m_removal.PassedOver(), "x\\a");
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(RemoteRemovalTest, TellsOnlyOnceWhatStaysDeepDown) {
  m_server.AddFile("/x/a/b/c/d/e/f");
  m_server.Fail("DELE f", 10);
  RemoveX();
  EXPECT_EQ(Count("DELE f"), 1);
  EXPECT_EQ(m_removal.PassedOver(), "e\\f");
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(RemoteRemovalTest, PassesOverNothingInAnOrdinaryFolder) {
  m_server.AddFile("/x/a/b");
  RemoveX();
  EXPECT_EQ(m_removal.PassedOver(), "");
}

// --- What ends the walk ----------------------------------------------------------------------

TEST_F(RemoteRemovalTest, EndsInFoldersWithoutEnd) {
  std::string path = "/x";
  for (int i = 0; i < 500; ++i) path += "/a";
  m_server.AddFolder(path);
  RemoveX();
  EXPECT_FALSE(m_removal.IsSound());
  EXPECT_EQ(m_host.statuses.back(), "too many folders in each other: a");
  EXPECT_EQ(Count("CWD a"), 128);
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(RemoteRemovalTest, RemovesAnyNumberOfFoldersBesideEachOther) {
  for (int i = 0; i < 200; ++i) m_server.AddFolder("/x/" + std::to_string(i));
  RemoveX();
  EXPECT_TRUE(m_removal.IsSound());
  EXPECT_EQ(m_server.Paths(), (Lines{"/keep/", "/keep/me", "/x/"}));
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
  EXPECT_EQ(m_server.commands, (Lines{"CWD x", "LIST", "LIST", "DELE a", "PWD", "CWD a", "PWD", "LIST",
                                      "LIST", "DELE b", "CDUP", "CDUP"}));
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

// After every number of commands: what is still tried, in vain.
TEST_F(RemoteRemovalTest, EndsWhenTheConnectionIsLost) {
  m_server.AddFile("/x/a/b");
  m_server.AddFile("/x/c");
  FakeRemoteServer undisturbed = m_server;
  RemoteRemoval(undisturbed, m_host).RemoveContents("x");
  ASSERT_EQ(undisturbed.commands,
            (Lines{"CWD x", "LIST", "LIST", "DELE a", "PWD", "CWD a", "PWD", "LIST", "LIST", "DELE b", "LIST",
                   "CDUP", "PWD", "RMD a", "LIST", "DELE c", "LIST", "CDUP"}));
  const Lines tried[] = {{},
                         {"LIST", "CDUP"},
                         {"LIST", "CDUP"},
                         {"DELE a", "RMD a", "LIST", "CDUP"},
                         {"RMD a", "LIST", "CDUP"},
                         {"CWD a", "RMD a", "LIST", "CDUP"},
                         {"PWD", "CWD /x", "CDUP"},
                         {"LIST", "CDUP", "CDUP"},
                         {"LIST", "CDUP", "CDUP"},
                         {"DELE b", "LIST", "CDUP", "CDUP"},
                         {"LIST", "CDUP", "CDUP"},
                         {"CDUP", "CDUP"},
                         {"PWD", "CDUP"},
                         {"RMD a", "LIST", "CDUP"},
                         {"LIST", "CDUP"},
                         {"DELE c", "LIST", "CDUP"},
                         {"LIST", "CDUP"},
                         {"CDUP"}};
  for (size_t count = 0; count < std::size(tried); ++count) {
    FakeRemoteServer server = m_server;
    server.DisconnectAfter(static_cast<int>(count));
    RemoteRemoval removal(server, m_host);
    removal.RemoveContents("x");
    ASSERT_GE(server.commands.size(), count);
    EXPECT_EQ(Lines(server.commands.begin() + static_cast<std::ptrdiff_t>(count), server.commands.end()),
              tried[count])
        << count << " commands";
    EXPECT_EQ(removal.IsSound(), count == 0);
  }
}

}  // namespace
