#include "publish/testing/fake_remote_server.h"

#include <gtest/gtest.h>

#include "net/error_codes.h"

namespace {

using Texts = std::vector<std::string>;

class FakeServer : public testing::Test {
 protected:
  Texts ListNames() {
    EXPECT_EQ(m_server.List(), kNetSuccess);
    Texts names;
    for (int i = 0; i < m_server.EntryCount(); ++i) names.emplace_back(m_server.Entry(i).name);
    return names;
  }
  FakeRemoteServer m_server;
};

TEST_F(FakeServer, WorksAsAServerDoes) {
  m_server.readLocalFile = [](const std::string& path) -> std::optional<std::string> {
    if (path == "missing") return std::nullopt;
    return "content of " + path;
  };
  EXPECT_EQ(m_server.MakeFolder("a"), kNetSuccess);
  EXPECT_EQ(m_server.MakeFolder("a"), kNetDenied);
  EXPECT_EQ(m_server.ChangeFolder("a"), kNetSuccess);
  EXPECT_EQ(m_server.SendFile("local", "f"), kNetSuccess);
  EXPECT_EQ(m_server.SendFile("missing", "g"), kNetSourceNotOpened);
  EXPECT_EQ(m_server.Content("/a/f"), "content of local");
  EXPECT_EQ(ListNames(), Texts{"f"});
  EXPECT_EQ(m_server.Entry(0).size, 16);
  EXPECT_STREQ(m_server.Entry(1).name, "");
  EXPECT_EQ(m_server.GoToParent(), kNetSuccess);
  EXPECT_EQ(m_server.RemoveFolder("a"), kNetDenied) << "not empty";
  EXPECT_EQ(m_server.RemoveFile("a"), kNetDenied) << "a folder";
  EXPECT_EQ(m_server.RemoveFile("a/f"), kNetSuccess) << "names reach other folders";
  EXPECT_EQ(m_server.RemoveFolder("a"), kNetSuccess);
  EXPECT_EQ(m_server.ChangeFolder("a"), kNetDenied);
  EXPECT_EQ(m_server.Paths(), Texts{});
  EXPECT_EQ(m_server.commands, (Texts{"MKD a", "MKD a", "CWD a", "STOR f", "STOR g", "LIST", "CDUP", "RMD a",
                                      "DELE a", "DELE a/f", "RMD a", "CWD a"}));
}

TEST_F(FakeServer, LetsNamesReachOtherFolders) {
  m_server.AddFile("/a/b/x");
  EXPECT_EQ(m_server.ChangeFolder("a/b"), kNetSuccess);
  EXPECT_EQ(m_server.ChangeFolder(".."), kNetSuccess);
  EXPECT_EQ(m_server.CurrentFolder(), "/a");
  EXPECT_EQ(m_server.ChangeFolder("/"), kNetSuccess);
  EXPECT_EQ(m_server.CurrentFolder(), "/");
  EXPECT_EQ(m_server.GoToParent(), kNetSuccess);
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(FakeServer, ShowsLinksAsFolders) {
  m_server.AddFile("/a/b/x");
  m_server.AddLink("/link", "/a/b");
  EXPECT_EQ(ListNames(), (Texts{"a", "link"}));
  EXPECT_EQ(m_server.Entry(1).directory, 1);
  EXPECT_EQ(m_server.ChangeFolder("link"), kNetSuccess);
  std::string place;
  EXPECT_EQ(m_server.CurrentFolder(place), kNetSuccess);
  EXPECT_EQ(place, "/a/b");
  EXPECT_EQ(m_server.GoToParent(), kNetSuccess);
  EXPECT_EQ(m_server.CurrentFolder(), "/a");
  EXPECT_EQ(m_server.RemoveFolder("/link"), kNetDenied);
  EXPECT_EQ(m_server.RemoveFile("/link"), kNetSuccess);
  EXPECT_EQ(m_server.Paths(), (Texts{"/a/", "/a/b/", "/a/b/x"}));
}

TEST_F(FakeServer, FailsAsScripted) {
  m_server.AddFolder("/a");
  m_server.Fail("CWD a", kNetNoResponse, 1, 1);
  EXPECT_EQ(m_server.ChangeFolder("a"), kNetSuccess);
  EXPECT_EQ(m_server.GoToParent(), kNetSuccess);
  EXPECT_EQ(m_server.ChangeFolder("a"), kNetNoResponse);
  EXPECT_EQ(m_server.CurrentFolder(), "/");
  EXPECT_EQ(m_server.ChangeFolder("a"), kNetSuccess);
  m_server.Fail("LIST /a", kNetListFailed);
  m_server.Fail("MKD", kNetDenied);
  EXPECT_EQ(m_server.List(), kNetListFailed);
  EXPECT_EQ(m_server.MakeFolder("x"), kNetDenied);
  EXPECT_EQ(m_server.GoToParent(), kNetSuccess);
  EXPECT_EQ(m_server.List(), kNetSuccess) << "another folder";
}

TEST_F(FakeServer, LiesAndGrows) {
  m_server.AddFile("/x");
  m_server.AddLie("/", "..", true);
  m_server.AddLie("/other", "y", true);
  m_server.Refill("/", "new", 2);
  EXPECT_EQ(ListNames(), (Texts{"..", "x", "new0"}));
  EXPECT_EQ(m_server.Entry(0).directory, 1);
  EXPECT_EQ(m_server.Entry(1).directory, 0);
  EXPECT_EQ(ListNames(), (Texts{"..", "x", "new0", "new1"}));
  EXPECT_EQ(ListNames(), (Texts{"..", "x", "new0", "new1"}));
}

TEST_F(FakeServer, LosesTheConnection) {
  m_server.AddFolder("/a");
  m_server.DisconnectAfter(1);
  EXPECT_TRUE(m_server.IsConnected());
  EXPECT_EQ(m_server.ChangeFolder("a"), kNetSuccess);
  EXPECT_FALSE(m_server.IsConnected());
  EXPECT_EQ(m_server.List(), kNetNoResponse);
}

}  // namespace
