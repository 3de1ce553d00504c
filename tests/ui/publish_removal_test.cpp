// Removing remote folders of servers that lie, refuse, die and fall silent.
#include "ui/scripted_dialog.h"

namespace {

constexpr char kLies[] =
    "drwxr-xr-x 2 ann ann 4096 Mar 07 2014 .\r\n"
    "drwxr-xr-x 2 ann ann 4096 Mar 07 2014 ..\r\n"
    "drwxr-xr-x 2 ann ann 4096 Mar 07 2014 /etc\r\n"
    "-rw-r--r-- 1 ann ann 9 Mar 07 2014 ../secret\r\n"
    "-rw-r--r-- 1 ann ann 9 Mar 07 2014 a\\b\r\n"
    "-rw-r--r-- 1 ann\r\n"
    "-rw-r--r-- 1 ann ann 9 Mar 07 2014 esc\x1B\r\n";

class Removal : public ScriptedDialog {
 protected:
  void Remove() {
    ASSERT_TRUE(SelectRow("x"));
    FtpItem(IDC_FTP_REMOVE).Click();
    EXPECT_EQ(NextMessage(IDYES),
              (Told{"Do you want to remove remote folder 'x'?\nYou cannot undo this operation",
                    BoxIcon::kInformation,
                    {IDYES, IDNO}}));
  }
};

TEST_F(Removal, OfAnEmptyFolderTakesFourCommands) {
  ASSERT_TRUE(ConnectTo(Answering("CWD x", "250") + Listing("") + Answering("CDUP", "250") +
                        Answering("RMD x", "250") + Listing("") + kLeaving));
  Remove();
  EXPECT_TRUE(WaitUntil([this] { return Rows().empty() && LooksConnected(); }));
}

TEST_F(Removal, IsDroppedWhenTheAnswerIsNo) {
  ASSERT_TRUE(ConnectTo(kLeaving));
  ASSERT_TRUE(SelectRow("x"));
  FtpItem(IDC_FTP_REMOVE).Click();
  NextMessage(IDNO);
  EXPECT_TRUE(LooksConnected());
}

TEST_F(Removal, NeedsASelectedRow) {
  ASSERT_TRUE(ConnectTo(Answering("NOOP", "200") + Script{Gate()} + kLeaving));
  FtpItem(IDC_FTP_REMOVE).Click();
  PostTimer();
  ASSERT_TRUE(IsAtGate());
  EXPECT_FALSE(FindMessageBox(Running()));
  Go();
}

TEST_F(Removal, NeverUsesWhatAServerMakesUp) {
  const std::string lies = kLies;
  const std::string file = lies + "-rw-r--r-- 1 ann ann 9 Mar 07 2014 plain\r\n";
  ASSERT_TRUE(ConnectTo(Answering("CWD x", "250") + Listing(file) + Listing(file) +
                        Answering("DELE plain", "250") + Listing(lies) + Answering("CDUP", "250") +
                        Answering("RMD x", "250") + Listing("") + kLeaving));
  Remove();
  EXPECT_TRUE(WaitUntil([this] { return Rows().empty() && LooksConnected(); }));
}

TEST_F(Removal, RefusesARowThatIsNoFolderOfThisOne) {
  ASSERT_TRUE(OpenUpload(""));
  ASSERT_TRUE(Connect(LoginTo(LoggingIn() + Listing(kLies) + kLeaving)));
  for (const char* name : {".", "..", "/etc", "../secret"}) {
    ASSERT_TRUE(SelectRow(name));
    FtpItem(IDC_FTP_REMOVE).Click();
    EXPECT_EQ(NextMessage(),
              (Told{"Unable to remove remote folder '" + std::string(name) + "'", BoxIcon::kWarning}));
  }
}

TEST_F(Removal, PassesOverWhatCannotBeDeleted) {
  const std::string first = "-rw-r--r-- 1 ann ann 9 Mar 07 2014 plain\r\n";
  const std::string second = "-rw-r--r-- 1 ann ann 9 Mar 07 2014 other\r\n";
  ASSERT_TRUE(ConnectTo(Answering("CWD x", "250") + Listing(first + second) + Listing(first + second) +
                        Answering("DELE plain", "550 no") + Listing(first + second) +
                        Answering("DELE other", "250") + Listing(first) + Answering("CDUP", "250") +
                        Answering("RMD x", "550 not empty") + Listing(kOneFolder) + kLeaving));
  Remove();
  EXPECT_EQ(NextMessage(),
            (Told{"Unable to remove remote folder 'x'\nNot deleted: x\\plain", BoxIcon::kWarning}));
  EXPECT_TRUE(LooksConnected());
}

TEST_F(Removal, TellsOfAFolderThatStays) {
  ASSERT_TRUE(ConnectTo(Answering("CWD x", "250") + Listing("") + Answering("CDUP", "250") +
                        Answering("RMD x", "550 no") + Listing(kOneFolder) + kLeaving));
  Remove();
  EXPECT_EQ(NextMessage(), (Told{"Unable to remove remote folder 'x'", BoxIcon::kWarning}));
  EXPECT_TRUE(LooksConnected());
}

TEST_F(Removal, ShowsWhatItDoes) {
  const std::string file = "-rw-r--r-- 1 ann ann 9 Mar 07 2014 plain\r\n";
  ASSERT_TRUE(ConnectTo(Script{Gate()} + Answering("CWD x", "250") + Listing("") + Answering("CDUP", "250") +
                        Answering("RMD x", "250") + Listing("") + kLeaving));
  ASSERT_TRUE(IsAtGate());
  Remove();
  EXPECT_TRUE(WaitUntil([this] { return FtpItem(IDC_FTP_STATUS).IsVisible(); }));
  EXPECT_EQ(FtpItem(IDC_FTP_STATUS).Text(), "Start deleting...");
  EXPECT_FALSE(FtpItem(IDC_FTP_PROGRESS).IsVisible());
  EXPECT_TRUE(FtpItem(IDC_FTP_ABORT).IsEnabled());
  Go();
  EXPECT_TRUE(WaitUntil([this] { return LooksConnected(); }));
  EXPECT_FALSE(FtpItem(IDC_FTP_STATUS).IsVisible());
  EXPECT_TRUE(FtpItem(IDC_FTP_PROGRESS).IsVisible());
}

TEST_F(Removal, EndsWhenTheServerDies) {
  ASSERT_TRUE(ConnectTo(Answering("CWD x", "250") + Script{AnswerPasv(), Expect("LIST"), Reset()}));
  Remove();
  EXPECT_EQ(NextMessage().text, "Unable to remove remote folder 'x'");
  EXPECT_EQ(NextMessage(), (Told{"Connection lost", BoxIcon::kWarning}));
  EXPECT_TRUE(LooksDisconnected());
}

TEST_F(Removal, StopsWhenTheServerIsSilent) {
  ASSERT_TRUE(ConnectTo(Answering("CWD x", "250") + Script{AnswerPasv(), Expect("LIST"), Gate()}));
  Remove();
  ASSERT_TRUE(IsAtGate());
  FtpItem(IDC_FTP_ABORT).Click();
  NextMessage(IDYES);
  const ULONGLONG start = GetTickCount64();
  EXPECT_EQ(NextMessage(), (Told{"Connection lost", BoxIcon::kWarning}));
  EXPECT_LT(GetTickCount64() - start, kSoon);
  EXPECT_TRUE(LooksDisconnected());
  Go();
}

}  // namespace
