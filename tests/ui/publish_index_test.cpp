// The index page of the upload dialog. Its button is hidden, but it is there.
#include "ui/scripted_dialog.h"

// After windows.h.
#include <commctrl.h>

namespace {

constexpr char kTwoFolders[] =
    "drwxr-xr-x 2 ann ann 4096 Mar 07 2014 x\r\n"
    "drwxr-xr-x 2 ann ann 4096 Mar 07 2014 y\r\n";
constexpr char kDataSet[] =
    "-rw-r--r-- 1 ann ann 9 Mar 07 2014 preview.jpg\r\n"
    "-rw-r--r-- 1 ann ann 9 Mar 07 2014 doc.kml\r\n";

class Index : public ScriptedDialog {
 protected:
  // Shows two folders and serves script.
  bool ConnectToTwoFolders(const Script& script) {
    return OpenUpload("", "http://www.example.org/maps") &&
           Connect(LoginTo(LoggingIn() + Listing(kTwoFolders) + Listing(kTwoFolders) + script));
  }
  void Update() { FtpItem(IDC_FTP_UPDATE_INDEX).Click(); }

  // A listing that waits for Go.
  Script SlowListing(const std::string& lines) {
    return {AnswerPasv(), Expect("LIST"),  AcceptData(), Say("150"),
            Gate(),       SendData(lines), CloseData(),  Say("226")};
  }
  const Script m_page = Answering("DELE index.html", "250") + Receiving("index.html");
};

TEST_F(Index, IsSentInPlaceOfTheOldOne) {
  ASSERT_TRUE(OpenUpload("", "http://www.example.org/maps"));
  ASSERT_TRUE(
      Connect(LoginTo(LoggingIn() + Listing(kOneFolder) + Listing(kOneFolder) + Answering("CWD x", "250") +
                      Listing("-rw-r--r-- 1 ann ann 9 Mar 07 2014 preview.jpg\r\n"
                              "-rw-r--r-- 1 ann ann 9 Mar 07 2014 doc.kml\r\n") +
                      Answering("CDUP", "250") + Answering("DELE index.html", "550 none yet") +
                      Receiving("index.html") + kLeaving)));
  FtpItem(IDC_FTP_UPDATE_INDEX).Click();
  EXPECT_EQ(NextMessage(), (Told{"Remote index updated", BoxIcon::kInformation}));
  EXPECT_TRUE(LooksConnected());
  EXPECT_TRUE(FtpItem(IDC_FTP_CHECK).IsEnabled());
  EXPECT_TRUE(CloseUpload());
  EXPECT_EQ(m_server->Finish(), "");
  const std::string page = m_server->HeardOnData();
  EXPECT_NE(page.find("<img style=\"vertical-align: middle;\" src=\"x/preview.jpg\""), std::string::npos);
  EXPECT_NE(page.find("<li><a href=\"http://www.example.org/maps/x/doc.kml\""), std::string::npos);
  EXPECT_NE(page.find("<li>Created: 2014/03/07 00:00</p></li>"), std::string::npos);
}

TEST_F(Index, IsNotTouchedWhenTheFolderCannotBeListed) {
  ASSERT_TRUE(OpenUpload("", "http://www.example.org/maps"));
  ASSERT_TRUE(Connect(LoginTo(LoggingIn() + Listing(kOneFolder) + Answering("PASV", "425 no") + kLeaving)));
  FtpItem(IDC_FTP_UPDATE_INDEX).Click();
  EXPECT_EQ(NextMessage(), (Told{"Unable to update the remote index", BoxIcon::kWarning}));
  EXPECT_FALSE(FtpItem(IDC_FTP_CHECK).IsEnabled());
  for (const int id : {IDC_FTP_DISCONNECT, IDC_FTP_REMOVE, IDC_FTP_REFRESH, IDC_FTP_LIST, IDC_FTP_UPLOAD,
                       IDC_FTP_UPDATE_INDEX, IDC_FTP_DATA_FOLDER, static_cast<int>(IDOK)}) {
    EXPECT_TRUE(FtpItem(id).IsEnabled()) << id;
  }
}

TEST_F(Index, LocksTheControlsAndShowsItsProgress) {
  ASSERT_TRUE(ConnectToTwoFolders(Answering("CWD x", "550 no") + Answering("CWD y", "250") + SlowListing("") +
                                  Answering("CDUP", "250") + m_page + kLeaving));
  Update();
  ASSERT_TRUE(IsAtGate());
  for (const int id : {IDC_FTP_DISCONNECT, IDC_FTP_REMOVE, IDC_FTP_REFRESH, IDC_FTP_LIST, IDC_FTP_UPLOAD,
                       IDC_FTP_UPDATE_INDEX, IDC_FTP_DATA_FOLDER, static_cast<int>(IDOK)}) {
    EXPECT_FALSE(FtpItem(id).IsEnabled()) << id;
  }
  EXPECT_TRUE(FtpItem(IDC_FTP_ABORT).IsEnabled());
  EXPECT_EQ(FtpItem(IDC_FTP_PROGRESS).Send(PBM_GETRANGE, FALSE), 2);
  EXPECT_EQ(FtpItem(IDC_FTP_PROGRESS).Send(PBM_GETPOS), 1);
  Go();
  EXPECT_EQ(NextMessage(), (Told{"Remote index updated", BoxIcon::kInformation}));
  EXPECT_TRUE(LooksConnected());
  EXPECT_EQ(FtpItem(IDC_FTP_PROGRESS).Send(PBM_GETPOS), 0);
}

TEST_F(Index, IsMadeOfWhatAnAbortedSurveyHasGathered) {
  ASSERT_TRUE(ConnectToTwoFolders(Answering("CWD x", "250") + Listing(kDataSet) + Answering("CDUP", "250") +
                                  Answering("CWD y", "250") + SlowListing(kDataSet) +
                                  Answering("CDUP", "250") + m_page + kLeaving));
  Update();
  ASSERT_TRUE(IsAtGate());
  FtpItem(IDC_FTP_ABORT).Click();
  NextMessage(IDYES);
  Go();
  EXPECT_EQ(NextMessage(), (Told{"Remote index updated", BoxIcon::kInformation}));
  EXPECT_TRUE(CloseUpload());
  EXPECT_EQ(m_server->Finish(), "");
  EXPECT_NE(m_server->HeardOnData().find("x/preview.jpg"), std::string::npos);
  EXPECT_EQ(m_server->HeardOnData().find("y/preview.jpg"), std::string::npos);
}

TEST_F(Index, IsNotTouchedByWhoClosesInTheMiddleOfTheSurvey) {
  ASSERT_TRUE(ConnectToTwoFolders(Answering("CWD x", "250") + SlowListing(kDataSet) +
                                  Answering("CDUP", "250") + kLeaving));
  Update();
  ASSERT_TRUE(IsAtGate());
  const Window dialog = Ftp();
  dialog.Post(WM_CLOSE);
  NextMessage(IDYES);
  Go();
  EXPECT_TRUE(dialog.WaitUntilGone());
  EXPECT_FALSE(FindMessageBox(Running()));
}

TEST_F(Index, IsSentToItsEndWhateverIsClosed) {
  ASSERT_TRUE(ConnectToTwoFolders(Answering("CWD x", "250") + Listing(kDataSet) + Answering("CDUP", "250") +
                                  Answering("CWD y", "550") + Answering("DELE index.html", "250") +
                                  Script{AnswerPasv(), Expect("STOR index.html"), AcceptData(), Gate(),
                                         Say("150"), HearData(), CloseData(), Say("226")} +
                                  kLeaving));
  Update();
  ASSERT_TRUE(IsAtGate());
  const Window dialog = Ftp();
  EXPECT_FALSE(dialog.Item(IDC_FTP_ABORT).IsEnabled());
  dialog.Item(IDC_FTP_ABORT).Click();
  dialog.Post(WM_CLOSE);
  EXPECT_TRUE(dialog.AnswerTime(kPatience));
  Go();
  EXPECT_EQ(NextMessage(), (Told{"Remote index updated", BoxIcon::kInformation}));
  EXPECT_TRUE(dialog.WaitUntilGone());
  EXPECT_EQ(m_server->Finish(), "");
  EXPECT_TRUE(m_server->HeardOnData().ends_with("</HTML>\r\n"));
}

TEST_F(Index, LeavesTheListAsItIsWhereTheServerStands) {
  ASSERT_TRUE(ConnectToTwoFolders(Answering("CWD x", "250") + Listing(kDataSet) +
                                  Answering("CDUP", "550 no") + Answering("CWD ..", "550 no") +
                                  Listing(kDataSet) + kLeaving));
  Update();
  EXPECT_EQ(NextMessage(), (Told{"Unable to update the remote index", BoxIcon::kWarning}));
  EXPECT_EQ(Names(), (Strings{"preview.jpg", "doc.kml"}));
  EXPECT_TRUE(FtpItem(IDC_FTP_DISCONNECT).IsEnabled());
  EXPECT_FALSE(FtpItem(IDC_FTP_CHECK).IsEnabled());
}

}  // namespace
