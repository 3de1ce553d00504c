#include "publish/index_upload.h"

#include <gtest/gtest.h>

#include "net/error_codes.h"
#include "publish/testing/fake_remote_server.h"
#include "support/temporary_folder.h"

namespace {

using Texts = std::vector<std::string>;

#ifdef _WIN32
constexpr char kLineEnd[] = "\r\n";
#else
constexpr char kLineEnd[] = "\n";
#endif

class IndexUpload : public testing::Test {
 protected:
  TemporaryFolder m_folder;
  const std::string m_path = m_folder.Path("index.html");
  FakeRemoteServer m_server;
};

TEST(LocalIndex, LiesInTheGivenFolder) {
  EXPECT_EQ(LocalIndexPath("C:\\ProgramData"), "C:\\ProgramData\\index.html");
  EXPECT_EQ(LocalIndexPath("C:/All users//Data\\"), "C:\\All users\\Data\\index.html");
  EXPECT_EQ(LocalIndexPath("D:\\"), "D:\\index.html");
  EXPECT_EQ(LocalIndexPath("C:\\a.b"), "C:\\a.b\\index.html");
  EXPECT_EQ(LocalIndexPath(""), "") << "not into whatever folder is the current one";
}

TEST_F(IndexUpload, ReplacesTheRemotePage) {
  m_server.AddFile("/index.html", "old");
  EXPECT_EQ(UploadIndexPage(m_server, m_path, "a\nb\n"), 1);
  EXPECT_EQ(m_server.commands, (Texts{"DELE index.html", "STOR index.html"}));
  const std::string bytes = std::string("a") + kLineEnd + "b" + kLineEnd;
  EXPECT_EQ(m_server.Content("/index.html"), bytes);
  EXPECT_EQ(ReadFile(m_path), bytes);
}

TEST_F(IndexUpload, NeedsNoRemotePage) {
  EXPECT_EQ(UploadIndexPage(m_server, m_path, "a"), 1);
  EXPECT_EQ(m_server.Content("/index.html"), "a");
}

TEST_F(IndexUpload, ReplacesALongerLocalFile) {
  WriteFile(m_path, "what is left of another page");
  EXPECT_EQ(UploadIndexPage(m_server, m_path, "a"), 1);
  EXPECT_EQ(ReadFile(m_path), "a");
}

TEST_F(IndexUpload, TellsThatThePageWasNotSent) {
  m_server.Fail("STOR", kNetStorFailed);
  EXPECT_EQ(UploadIndexPage(m_server, m_path, "a"), 0);
  EXPECT_TRUE(m_server.reportedErrors.empty()) << "the client does that";
}

TEST_F(IndexUpload, LeavesTheRemotePageWhenThereIsNoLocalFile) {
  m_server.AddFile("/index.html", "old");
  for (const std::string& path : {m_folder.Path("none") + "/index.html", m_folder.Path(), std::string()}) {
    EXPECT_EQ(UploadIndexPage(m_server, path, "a"), 0) << path;
  }
  EXPECT_EQ(m_server.commands, Texts{});
  EXPECT_EQ(m_server.Content("/index.html"), "old");
}

#ifndef _WIN32
TEST_F(IndexUpload, LeavesTheRemotePageWhenTheDiskIsFull) {
  m_server.readLocalFile = [](const std::string&) { return "endless"; };
  EXPECT_EQ(UploadIndexPage(m_server, "/dev/full", "a"), 0);
  EXPECT_EQ(m_server.commands, Texts{});
}
#endif

TEST_F(IndexUpload, DoesNothingWithoutAConnection) {
  m_server.Disconnect();
  EXPECT_EQ(UploadIndexPage(m_server, m_path, "a"), 0);
  EXPECT_EQ(m_server.commands, Texts{});
  EXPECT_FALSE(FileExists(m_path));
}

TEST_F(IndexUpload, FailsWhenTheConnectionIsLostMeanwhile) {
  m_server.DisconnectAfter(1);
  EXPECT_EQ(UploadIndexPage(m_server, m_path, "a"), 0);
  EXPECT_EQ(m_server.commands, (Texts{"DELE index.html", "STOR index.html"}));
}

}  // namespace
