// Uploads to servers that take them, refuse files, die and fall silent.
#include <set>

#include "ui/screenshot.h"
#include "ui/scripted_dialog.h"

namespace {

// The frame, the bar and the room for it, and then the text with its smoothed edges.
constexpr size_t kColoursWithText = 6;

class Upload : public ScriptedDialog {
 protected:
  size_t ColoursOfTheBar() {
    const Picture picture = TakePicture(FtpItem(IDC_FTP_PROGRESS).Place());
    return std::set<uint32_t>(picture.pixels.begin(), picture.pixels.end()).size();
  }
};

TEST_F(Upload, RefusesFoldersThatCannotBeUploaded) {
  const struct {
    std::string folder;
    const char* message;
  } cases[] = {{Path("missing"), "The folder to upload does not exist"},
               {Path("file"), "The folder to upload does not exist"},
               {"", "The folder to upload does not exist"},
               {"C:", "Unable to upload local folder"},
               {"C:\\", "Unable to upload local folder"}};
  WriteFileIn(Path("file"), "x");
  for (const auto& [folder, message] : cases) {
    ASSERT_TRUE(OpenUpload(folder));
    ASSERT_TRUE(Connect(LoginTo(LoggingIn() + Listing("") + kLeaving)));
    FtpItem(IDC_FTP_UPLOAD).Click();
    EXPECT_EQ(NextMessage(), (Told{message, BoxIcon::kInformation})) << folder;
    EXPECT_TRUE(LooksConnected());
    EXPECT_TRUE(CloseUpload());
    EXPECT_EQ(m_server->Finish(), "");
  }
}

// What is typed into the field is only looked at.
TEST_F(Upload, UploadsTheFolderThatItWasOpenedWith) {
  ASSERT_TRUE(ConnectTo(Answering("CWD up", "550 no") + Answering("MKD up", "257") +
                            Answering("CWD up", "250") + Receiving("a") + Answering("CDUP", "250") +
                            Listing("") + kLeaving,
                        {"a"}));
  FtpItem(IDC_FTP_DATA_FOLDER).SetText(Path("other"));
  FtpItem(IDC_FTP_UPLOAD).Click();
  EXPECT_EQ(NextMessage().text, "1 file uploaded");
}

TEST_F(Upload, UploadsAnEmptyFolder) {
  CreateDirectoryA(Path("up").c_str(), nullptr);
  ASSERT_TRUE(ConnectTo(Answering("CWD up", "550 no") + Answering("MKD up", "257") +
                            Answering("CWD up", "250") + Answering("CDUP", "250") + Listing(kOneFolder) +
                            kLeaving,
                        {}));
  FtpItem(IDC_FTP_UPLOAD).Click();
  EXPECT_EQ(NextMessage(), (Told{"0 file uploaded", BoxIcon::kInformation}));
}

TEST_F(Upload, GoesOnWhenAFileIsRefused) {
  ASSERT_TRUE(ConnectTo(Answering("CWD up", "550 no") + Answering("MKD up", "257") +
                        Answering("CWD up", "250") + Receiving("a") +
                        Script{AnswerPasv(), Expect("STOR b"), AcceptData(), Say("552 disk full")} +
                        Receiving("c") + Answering("CDUP", "250") + Listing("") + kLeaving));
  FtpItem(IDC_FTP_UPLOAD).Click();
  EXPECT_EQ(NextMessage(), (Told{"Only 2 file are uploaded correctly (3 total)", BoxIcon::kWarning}));
  EXPECT_TRUE(LooksConnected());
}

TEST_F(Upload, ReportsAServerThatDiesInTheMiddle) {
  ASSERT_TRUE(ConnectTo(Answering("CWD up", "550 no") + Answering("MKD up", "257") +
                        Answering("CWD up", "250") + Receiving("a") +
                        Script{AnswerPasv(), Expect("STOR b"), AcceptData(), ResetData(), Reset()}));
  FtpItem(IDC_FTP_UPLOAD).Click();
  EXPECT_EQ(NextMessage(), (Told{"Only 1 file are uploaded correctly (3 total)", BoxIcon::kWarning}));
  EXPECT_EQ(NextMessage(), (Told{"Connection lost", BoxIcon::kWarning}));
  EXPECT_TRUE(LooksDisconnected());
  EXPECT_TRUE(Rows().empty());
}

TEST_F(Upload, ShowsOnTheBarWhichFileWasLast) {
  ASSERT_TRUE(ConnectTo(Answering("CWD up", "550 no") + Answering("MKD up", "257") +
                            Answering("CWD up", "250") + Receiving("a") +
                            Script{AnswerPasv(), Expect("STOR b"), AcceptData(), Say("150"), Gate(),
                                   HearData(), CloseData(), Say("226")} +
                            Answering("CDUP", "250") + Listing("") + kLeaving,
                        {"a", "b"}));
  EXPECT_LT(ColoursOfTheBar(), kColoursWithText);
  FtpItem(IDC_FTP_UPLOAD).Click();
  ASSERT_TRUE(IsAtGate());
  EXPECT_TRUE(WaitUntil([this] { return ColoursOfTheBar() >= kColoursWithText; }));
  Go();
  EXPECT_EQ(NextMessage().text, "2 file uploaded");
  EXPECT_TRUE(WaitUntil([this] { return ColoursOfTheBar() < kColoursWithText; }));
}

TEST_F(Upload, StopsWhenAServerIsSilentInTheMiddle) {
  ASSERT_TRUE(ConnectTo(Answering("CWD up", "550 no") + Answering("MKD up", "257") +
                        Answering("CWD up", "250") + Receiving("a") +
                        Script{AnswerPasv(), Expect("STOR b"), AcceptData(), Gate()}));
  FtpItem(IDC_FTP_UPLOAD).Click();
  ASSERT_TRUE(IsAtGate());
  FtpItem(IDC_FTP_ABORT).Click();
  EXPECT_EQ(NextMessage(IDYES),
            (Told{"Do you want to stop current operation?", BoxIcon::kQuestion, {IDYES, IDNO}}));
  const ULONGLONG start = GetTickCount64();
  EXPECT_EQ(NextMessage(), (Told{"Only 1 file are uploaded correctly (3 total)", BoxIcon::kWarning}));
  EXPECT_LT(GetTickCount64() - start, kSoon);
  // An answer may still come to a question that nobody remembers.
  EXPECT_EQ(NextMessage(), (Told{"Connection lost", BoxIcon::kWarning}));
  EXPECT_TRUE(LooksDisconnected());
  Go();
}

TEST_F(Upload, AsksBeforeItClosesInTheMiddle) {
  ASSERT_TRUE(ConnectTo(Answering("CWD up", "550 no") + Answering("MKD up", "257") +
                        Answering("CWD up", "250") +
                        Script{AnswerPasv(), Expect("STOR a"), AcceptData(), Say("150"), Gate(), HearData(),
                               CloseData(), Say("226")} +
                        Answering("CDUP", "250") + kLeaving));
  FtpItem(IDC_FTP_UPLOAD).Click();
  ASSERT_TRUE(IsAtGate());
  const Window dialog = Ftp();
  dialog.Post(WM_CLOSE);
  EXPECT_EQ(NextMessage(IDNO),
            (Told{"Do you want to stop current operation?", BoxIcon::kQuestion, {IDYES, IDNO}}));
  EXPECT_TRUE(FtpItem(IDC_FTP_ABORT).IsEnabled());
  dialog.Post(WM_CLOSE);
  NextMessage(IDYES);
  Go();
  EXPECT_EQ(NextMessage().icon, BoxIcon::kWarning);
  EXPECT_TRUE(dialog.WaitUntilGone());
}

}  // namespace
