// A connection of the upload dialog: how it is kept, left and lost, and which clicks reach it.
#include "net/error_codes.h"
#include "ui/scripted_dialog.h"

namespace {

constexpr int kSlowly = 600;          // ms, for one way there and back
constexpr DWORD kTwoPeriods = 40000;  // ms, of the timer

class Connection : public ScriptedDialog {
 protected:
  // Connects to a server that has gone since.
  bool ConnectAndLose() {
    if (!ConnectTo({Gate(), Close()})) return false;
    Go();
    return m_server->Finish().empty();
  }
  // In the middle of a conversation, at once and without a word.
  void ExpectThatItIsLeftAtTheGate() {
    ASSERT_TRUE(IsAtGate());
    FtpItem(IDC_FTP_DISCONNECT).Click();
    EXPECT_TRUE(WaitUntil([this] { return LooksDisconnected(); }, kSoon));
    WaitForTurn();
    EXPECT_FALSE(FindMessageBox(Running()));
    Go();
  }
  // One command, answered after a while.
  static Script AnsweringSlowly(const std::string& command, const std::string& reply) {
    return {Expect(command), Wait(kSlowly), Say(reply)};
  }
  static ScriptedServer::Step Note(std::atomic<ULONGLONG>& time) {
    return [&time](ScriptedServer::Stage&) {
      time = GetTickCount64();
      return true;
    };
  }
};

TEST_F(Connection, IsKeptAliveButNotInTheMiddleOfAConversation) {
  ASSERT_TRUE(ConnectTo(Answering("NOOP", "200 fine") + Answering("CWD up", "550 no") +
                            Answering("MKD up", "257") + Answering("CWD up", "250") +
                            Script{AnswerPasv(), Expect("STOR a"), AcceptData(), Say("150"), Gate(),
                                   HearData(), CloseData(), Say("226")} +
                            Answering("CDUP", "250") + Listing("") + Answering("NOOP", "200 fine") + kLeaving,
                        {"a"}));
  PostTimer();
  FtpItem(IDC_FTP_UPLOAD).Click();
  ASSERT_TRUE(IsAtGate());
  for (int i = 0; i < 3; ++i) PostTimer();
  WaitForTurn();
  Go();
  EXPECT_EQ(NextMessage().text, "1 file uploaded");
  PostTimer();
}

TEST_F(Connection, IsKeptAliveEveryTwentySeconds) {
  std::atomic<ULONGLONG> begin = 0;
  std::atomic<ULONGLONG> end = 0;
  ASSERT_TRUE(ConnectTo(Script{Note(begin), Wait(15000), Expect("NOOP"), Note(end), Say("200")} + kLeaving));
  ASSERT_TRUE(WaitUntil([&] { return end != 0; }, kTwoPeriods));
  EXPECT_GE(end - begin, 19000U);
}

// --- The listing -----------------------------------------------------------------------------

TEST_F(Connection, TellsWhatIsWrongWithTheListing) {
  const Script refused = {AnswerPasv(), Expect("LIST"), AcceptData(), Say("150"), CloseData(), Say("550 no")};
  ASSERT_TRUE(OpenUpload(""));
  FillInLogin(LoginTo(LoggingIn() + refused + Listing(kOneFolder) + refused + kLeaving));
  FtpItem(IDC_FTP_CONNECT).Click();
  const Told told = {CUT_ERR::GetErrorString(kNetListFailed), BoxIcon::kWarning};
  EXPECT_EQ(NextMessage(), told);
  EXPECT_TRUE(WaitUntil([this] { return LooksConnected(); }));
  FtpItem(IDC_FTP_REFRESH).Click();
  EXPECT_TRUE(WaitUntil([this] { return Names() == Strings{"x"}; }));
  FtpItem(IDC_FTP_REFRESH).Click();
  EXPECT_EQ(NextMessage(), told);
  EXPECT_TRUE(Rows().empty());
  EXPECT_TRUE(LooksConnected());
}

// Else what is removed next is not what was chosen.
TEST_F(Connection, ShowsWhereItStandsWhenTheFolderExists) {
  ASSERT_TRUE(ConnectTo(
      Answering("CWD up", "250") + Listing("drwxr-xr-x 2 ann ann 4096 Mar 07 2014 inside\r\n") + kLeaving,
      {"a"}));
  FtpItem(IDC_FTP_UPLOAD).Click();
  EXPECT_EQ(NextMessage(),
            (Told{"Remote folder already exists.\nPlease remove it or specify a different folder name",
                  BoxIcon::kInformation}));
  EXPECT_TRUE(WaitUntil([this] { return Names() == Strings{"inside"}; }));
  EXPECT_TRUE(LooksConnected());
}

// Behind an address translation a server may name an address that is not reached from here.
TEST_F(Connection, TransfersToTheServerWhateverAddressItNames) {
  ASSERT_TRUE(OpenUpload(""));
  const Script listing = {AnswerPasv("127.0.0.1", "127.0.0.2"),
                          Expect("LIST"),
                          AcceptData(),
                          Say("150"),
                          SendData(kOneFolder),
                          CloseData(),
                          Say("226")};
  ASSERT_TRUE(Connect(LoginTo(LoggingIn() + listing + kLeaving)));
  EXPECT_EQ(Names(), Strings{"x"});
}

// --- Clicks ----------------------------------------------------------------------------------

TEST_F(Connection, IsNotMadeTwice) {
  ASSERT_TRUE(ConnectTo(Answering("NOOP", "200") + Script{Gate()} + kLeaving));
  FtpItem(IDC_FTP_CONNECT).Click();
  PostTimer();
  EXPECT_TRUE(IsAtGate());
  Go();
  EXPECT_FALSE(FindMessageBox(Running()));
  EXPECT_TRUE(LooksConnected());
}

TEST_F(Connection, IsNeededForTheIndexPage) {
  ASSERT_TRUE(ConnectTo(kLeaving));
  FtpItem(IDC_FTP_DISCONNECT).Click();
  ASSERT_TRUE(WaitUntil([this] { return LooksDisconnected(); }));
  ASSERT_TRUE(FtpItem(IDC_FTP_UPDATE_INDEX).IsEnabled());
  FtpItem(IDC_FTP_UPDATE_INDEX).Click();
  WaitForTurn();
  EXPECT_FALSE(FindMessageBox(Running()));
  EXPECT_TRUE(LooksDisconnected());
}

TEST_F(Connection, IsLeftInTheMiddleOfAListing) {
  ASSERT_TRUE(ConnectTo({AnswerPasv(), Expect("LIST"), AcceptData(), Gate()}));
  FtpItem(IDC_FTP_REFRESH).Click();
  ExpectThatItIsLeftAtTheGate();
}

TEST_F(Connection, IsLeftWhileItIsKeptAlive) {
  ASSERT_TRUE(ConnectTo({Expect("NOOP"), Gate()}));
  PostTimer();
  ExpectThatItIsLeftAtTheGate();
}

TEST_F(Connection, IsUsedOnceItIsKeptAlive) {
  ASSERT_TRUE(ConnectTo(Script{Expect("NOOP"), Gate(), Say("200")} + Listing("") + kLeaving));
  PostTimer();
  ASSERT_TRUE(IsAtGate());
  FtpItem(IDC_FTP_REFRESH).Click();
  WaitForTurn();
  Go();
  EXPECT_TRUE(WaitUntil([this] { return Rows().empty(); }));
}

// --- Losing it -------------------------------------------------------------------------------

TEST_F(Connection, TellsOnceThatItIsLost) {
  ASSERT_TRUE(ConnectAndLose());
  PostTimer();
  EXPECT_EQ(NextMessage(), (Told{"Connection lost", BoxIcon::kWarning}));
  EXPECT_TRUE(LooksDisconnected());
  EXPECT_TRUE(Rows().empty());
  PostTimer();
  WaitForTurn();
  EXPECT_FALSE(FindMessageBox(Running()));
}

TEST_F(Connection, TellsThatItIsLostWhenItIsWanted) {
  for (const int id : {IDC_FTP_UPLOAD, IDC_FTP_REFRESH, IDC_FTP_REMOVE, IDC_FTP_UPDATE_INDEX}) {
    m_bAtGate = m_bGo = false;
    ASSERT_TRUE(ConnectAndLose());
    FtpItem(id).Click();
    EXPECT_EQ(NextMessage(), (Told{"Connection lost", BoxIcon::kWarning})) << id;
    EXPECT_TRUE(WaitUntil([this] { return LooksDisconnected(); })) << id;
    WaitForTurn();
    EXPECT_FALSE(FindMessageBox(Running())) << id;
    ASSERT_TRUE(CloseUpload());
  }
}

TEST_F(Connection, IsLeftWithoutAWordWhenItIsLost) {
  ASSERT_TRUE(ConnectAndLose());
  FtpItem(IDC_FTP_DISCONNECT).Click();
  EXPECT_TRUE(WaitUntil([this] { return LooksDisconnected(); }, kSoon));
  WaitForTurn();
  EXPECT_FALSE(FindMessageBox(Running()));
}

TEST_F(Connection, IsLostWhileAQuestionIsOpen) {
  ASSERT_TRUE(ConnectTo({Gate(), Close()}));
  ASSERT_TRUE(SelectRow("x"));
  FtpItem(IDC_FTP_REMOVE).Click();
  ASSERT_TRUE(WaitForMessageBox(Running()));
  Go();
  m_server->Finish();
  PostTimer();
  EXPECT_TRUE(WaitUntil([this] { return LooksDisconnected(); }));
  EXPECT_EQ(NextMessage(IDYES).buttons, (std::vector<int>{IDYES, IDNO})) << "no other box lies over it";
  EXPECT_EQ(NextMessage(), (Told{"Connection lost", BoxIcon::kWarning}));
  EXPECT_TRUE(WaitUntil([this] { return LooksDisconnected(); }));
  WaitForTurn();
  EXPECT_FALSE(FindMessageBox(Running()));
}

// --- A slow line -----------------------------------------------------------------------------

TEST_F(Connection, SurvivesAnAbortOnASlowLine) {
  const std::string up = "up\\17\\100\\5";
  WriteFileIn(Path(up + "\\a"), "a");
  WriteFileIn(Path(up + "\\b"), "b");
  Script script = AnsweringSlowly("CWD up", "550 no");
  for (const char* folder : {"up", "17", "100", "5"}) {
    script = script + AnsweringSlowly(std::string("MKD ") + folder, "257") +
             AnsweringSlowly(std::string("CWD ") + folder, "250");
  }
  script = script + Script{AnswerPasv(), Expect("STOR a"), AcceptData(), Wait(kSlowly),     Say("150"),
                           Gate(),       HearData(),       CloseData(),  Wait(2 * kSlowly), Say("226")};
  for (int i = 0; i < 4; ++i) script = script + AnsweringSlowly("CDUP", "250");
  ASSERT_TRUE(ConnectTo(script + Listing(kOneFolder) + kLeaving, {}));
  FtpItem(IDC_FTP_UPLOAD).Click();
  ASSERT_TRUE(IsAtGate());
  FtpItem(IDC_FTP_ABORT).Click();
  NextMessage(IDYES);
  Go();
  EXPECT_EQ(NextMessage().icon, BoxIcon::kWarning);
  EXPECT_TRUE(LooksConnected());
  EXPECT_TRUE(WaitUntil([this] { return Names() == Strings{"x"}; }));
}

// Some servers do not know CDUP.
TEST_F(Connection, FindsTheWayUpByItsOtherName) {
  WriteFileIn(Path("up\\17\\a"), "a");
  WriteFileIn(Path("up\\18\\b"), "b");
  const Script up = Answering("CDUP", "502 what?") + Answering("CWD ..", "250");
  ASSERT_TRUE(ConnectTo(Answering("CWD up", "550 no") + Answering("MKD up", "257") +
                            Answering("CWD up", "250") + Answering("MKD 17", "257") +
                            Answering("CWD 17", "250") + Receiving("a") + up + Answering("MKD 18", "257") +
                            Answering("CWD 18", "250") + Receiving("b") + up + up + Listing("") + kLeaving,
                        {}));
  FtpItem(IDC_FTP_UPLOAD).Click();
  EXPECT_EQ(NextMessage().text, "2 file uploaded");
}

}  // namespace
