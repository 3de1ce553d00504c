// The upload dialog and a server that ends idle sessions after 25 seconds, and whose files do not grow
// beyond a million bytes.
#include "net/error_codes.h"
#include "net/ftp_client.h"
#include "ui/publish_fixture.h"

namespace {

constexpr DWORD kIdleTime = 25000;  // ms

using Limits = PublishTest;

TEST_F(Limits, OfTimeDoNotEndAnIdleConnection) {
  ASSERT_TRUE(OpenUpload(Path()));
  ASSERT_TRUE(Connect(ServerLogin()));
  // A connection on which nobody says anything, to see that the server means it.
  CUT_FTPClient silent;
  silent.SetControlPort(std::stoi(TextFromEnvironment("MOSAICON_FTP_PORT")));
  ASSERT_EQ(silent.FTPConnect("127.0.0.1", ServerLogin().user.c_str(), ServerLogin().password.c_str()),
            kNetSuccess);
  Sleep(2 * kIdleTime);
  EXPECT_NE(silent.NoOp(), kNetSuccess);
  EXPECT_TRUE(LooksConnected());
  WriteFileIn(Remote("new"), "x");
  FtpItem(IDC_FTP_REFRESH).Click();
  EXPECT_TRUE(WaitUntil([this] { return Names() == std::vector<std::string>{"new"}; }));
  EXPECT_TRUE(LooksConnected());
  EXPECT_TRUE(DeleteFileA(Remote("new").c_str()));
}

TEST_F(Limits, OfSpaceAreReported) {
  WriteFileIn(Path("up\\a"), "small");
  WriteFileIn(Path("up\\b"), std::string(5000000, 'x'));
  WriteFileIn(Path("up\\c"), "small");
  ASSERT_TRUE(OpenUpload(Path("up")));
  ASSERT_TRUE(Connect(ServerLogin()));
  FtpItem(IDC_FTP_UPLOAD).Click();
  EXPECT_EQ(NextMessage(), (Told{"Only 2 file are uploaded correctly (3 total)", BoxIcon::kWarning}));
  EXPECT_TRUE(LooksConnected());
  Tree uploaded = ReadTree(Remote("up"));
  EXPECT_LT(uploaded["b"].size(), 5000000U);
  uploaded.erase("b");
  EXPECT_EQ(uploaded, (Tree{{"a", "small"}, {"c", "small"}}));
}

}  // namespace
