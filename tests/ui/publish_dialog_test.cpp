// The upload dialog by itself, and with servers that do not behave: each test says what its server hears
// and answers.
#include "net/error_codes.h"
#include "ui/scripted_dialog.h"

// After windows.h.
#include <commctrl.h>

namespace {

using Dialog = ScriptedDialog;

TEST_F(Dialog, HasTheControlsOfItsTemplate) {
  ASSERT_TRUE(OpenUpload("d:\\maps\\my ortho"));
  EXPECT_EQ(Ftp().Text(), "FTP Upload");
  const struct {
    int id;
    int number;
    const char* text;
    bool isEnabled;
    bool isVisible;
  } controls[] = {
      {IDC_FTP_HOST, 1031, "", true, true},
      {IDC_FTP_REMOTE_FOLDER, 1048, "", true, true},
      {IDC_FTP_USER_NAME, 1032, "", true, true},
      {IDC_FTP_PASSWORD, 1033, "", true, true},
      {IDC_FTP_FIREWALL_MODE, 1036, "Firewall Mode", true, true},
      {IDC_FTP_BYTE, 1052, "Byte (Default)", true, true},
      {IDC_FTP_ASCII, 1053, "ASCII", true, true},
      {IDC_FTP_CONNECT, 1034, "Connect", true, true},
      {IDC_FTP_DISCONNECT, 1038, "Disconnect", false, true},
      {IDC_FTP_REFRESH, 1050, "Refresh", false, true},
      {IDC_FTP_REMOVE, 1043, "Remove", false, true},
      {IDC_FTP_LIST, 1037, "", false, true},
      {IDC_FTP_DATA_FOLDER, 1040, "d:\\maps\\my ortho", true, true},
      {IDC_FTP_UPLOAD, 1039, "Upload", false, true},
      {IDC_FTP_PROGRESS, 1041, "", true, true},
      {IDC_FTP_STATUS, 1049, "", true, false},
      {IDC_FTP_ABORT, 1042, "Abort", false, true},
      {IDC_FTP_UPDATE_INDEX, 1045, "Update remote index", false, false},
      {IDC_FTP_CHECK, 1046, "Check", false, false},
      {IDOK, 1, "Exit", true, true},
  };
  for (const auto& [id, number, text, isEnabled, isVisible] : controls) {
    EXPECT_EQ(id, number);
    std::string shown = FtpItem(id).Text();
    std::erase(shown, '&');
    EXPECT_EQ(shown, text);
    EXPECT_EQ(FtpItem(id).IsEnabled(), isEnabled) << text << id;
    EXPECT_EQ(FtpItem(id).IsVisible(), isVisible) << text << id;
  }
  EXPECT_NE(FtpItem(IDC_FTP_PROGRESS).Style() & PBS_SMOOTH, 0U);
  EXPECT_NE(FtpItem(IDC_FTP_PASSWORD).Style() & ES_PASSWORD, 0U);
  const RECT bar = FtpItem(IDC_FTP_PROGRESS).Place();
  const RECT status = FtpItem(IDC_FTP_STATUS).Place();
  EXPECT_TRUE(EqualRect(&bar, &status));
}

TEST_F(Dialog, LabelsWhatIsToBeFilledIn) {
  ASSERT_TRUE(OpenUpload(""));
  std::map<std::string, int> labelled;
  std::string label;
  for (const Window& control : Ftp().Children()) {
    if (!label.empty()) labelled[label] = control.Id();
    label = control.ClassName() == "Static" ? control.Text() : "";
    std::erase(label, '&');
  }
  EXPECT_EQ(labelled, (std::map<std::string, int>{{"Host Address", IDC_FTP_HOST},
                                                  {"Folder", IDC_FTP_REMOTE_FOLDER},
                                                  {"Username", IDC_FTP_USER_NAME},
                                                  {"Password", IDC_FTP_PASSWORD},
                                                  {"Transfer Type", IDC_FTP_BYTE},
                                                  {"Current Remote Folder", IDC_FTP_LIST},
                                                  {"Data Folder to upload", IDC_FTP_DATA_FOLDER}}));
}

TEST_F(Dialog, HasTwoColumns) {
  ASSERT_TRUE(OpenUpload(""));
  const Window list = FtpItem(IDC_FTP_LIST);
  RECT client = {};
  GetClientRect(list.Handle(), &client);
  EXPECT_EQ(list.Send(LVM_GETCOLUMNWIDTH, 0), static_cast<int>(client.right * 0.6));
  EXPECT_EQ(list.Send(LVM_GETCOLUMNWIDTH, 1), static_cast<int>(client.right * 0.4) - 5);
  const auto header = Window(reinterpret_cast<HWND>(list.Send(LVM_GETHEADER)));
  EXPECT_EQ(header.Send(HDM_GETITEMCOUNT), 2);
  EXPECT_EQ(Headings(), (Strings{"Folder", "Date"}));
}

TEST_F(Dialog, HasTwoBoxesOfWhichOneIsTicked) {
  ASSERT_TRUE(OpenUpload(""));
  const Window byte = FtpItem(IDC_FTP_BYTE);
  const Window ascii = FtpItem(IDC_FTP_ASCII);
  EXPECT_TRUE(byte.IsChecked());
  EXPECT_FALSE(ascii.IsChecked());
  for (const auto& [box, byteNext] :
       {std::pair(byte, false), {byte, true}, {ascii, false}, {ascii, true}, {ascii, false}, {byte, true}}) {
    box.Click();
    EXPECT_TRUE(WaitUntil(
        [&, byteNext = byteNext] { return byte.IsChecked() == byteNext && ascii.IsChecked() != byteNext; }));
  }
}

TEST_F(Dialog, RemembersTheLastConnection) {
  WriteProfile("FTP", "host", "ftp.example.org");
  WriteProfile("FTP", "username", "ann");
  WriteProfile("FTP", "password", "secret");
  WriteProfile("FTP", "bFirewall", "1");
  WriteProfile("FTP", "remoteFolder", "www/maps");
  WriteProfile("FTP", "transferType", "0");
  ASSERT_TRUE(OpenUpload(""));
  EXPECT_EQ(FtpItem(IDC_FTP_HOST).Text(), "ftp.example.org");
  EXPECT_EQ(FtpItem(IDC_FTP_USER_NAME).Text(), "ann");
  EXPECT_EQ(FtpItem(IDC_FTP_REMOTE_FOLDER).Text(), "www/maps");
  EXPECT_TRUE(FtpItem(IDC_FTP_FIREWALL_MODE).IsChecked());
  EXPECT_FALSE(FtpItem(IDC_FTP_BYTE).IsChecked());
  EXPECT_TRUE(FtpItem(IDC_FTP_ASCII).IsChecked());
}

// The password, too, which nobody can look at.
TEST_F(Dialog, ConnectsAsTheLastTime) {
  WriteProfile("FTP", "host", Serve(LoggingIn() + Listing("") + kLeaving));
  WriteProfile("FTP", "username", "ann");
  WriteProfile("FTP", "password", "secret");
  WriteProfile("FTP", "bFirewall", "1");
  ASSERT_TRUE(OpenUpload(""));
  FtpItem(IDC_FTP_CONNECT).Click();
  EXPECT_TRUE(WaitUntil([this] { return LooksConnected(); }));
}

TEST_F(Dialog, SaysEveryStepOfAConnection) {
  ASSERT_TRUE(OpenUpload(""));
  Login login = LoginTo(LoggingIn("A") + Answering("CWD www", "250") + Answering("CWD my maps", "250") +
                        Listing("total 8\r\n"
                                "drwxr-xr-x 2 ann ann 4096 Mar 07 2014 old\r\n"
                                "-rw-r--r-- 1 ann ann 9 Jan 31 1999 index.html\r\n"
                                "-rw-r--r-- 1 ann ann 9 Jan 31 1999 a b.txt\r\n"
                                "03-07-14  10:05AM <DIR> new\r\n") +
                        kLeaving);
  login.folder = "www/my maps";
  login.ascii = true;
  ASSERT_TRUE(Connect(login));
  EXPECT_EQ(Rows(),
            (std::vector<Row>{
                {"old", "2014/03/07 00:00"}, {"a b.txt", "1999/01/31 00:00"}, {"new", "2014/03/07 10:05"}}));
  EXPECT_EQ(ReadProfile("FTP", "host"), login.host);
  EXPECT_EQ(ReadProfile("FTP", "username"), "ann");
  EXPECT_EQ(ReadProfile("FTP", "password"), "secret");
  EXPECT_EQ(ReadProfile("FTP", "bFirewall"), "1");
  EXPECT_EQ(ReadProfile("FTP", "remoteFolder"), "www/my maps");
  EXPECT_EQ(ReadProfile("FTP", "transferType"), "0");
}

TEST_F(Dialog, GoesToTheRootWhenTheFolderBeginsThere) {
  ASSERT_TRUE(OpenUpload(""));
  Login login =
      LoginTo(LoggingIn() + Answering("CWD /", "250") + Answering("CWD www", "250") + Listing("") + kLeaving);
  login.folder = "/www//";
  EXPECT_TRUE(Connect(login));
}

TEST_F(Dialog, TakesAServerThatRefusesTheType) {
  ASSERT_TRUE(OpenUpload(""));
  Script script = LoggingIn();
  script.back() = Say("504 never");
  EXPECT_TRUE(Connect(LoginTo(script + Listing("") + kLeaving)));
  EXPECT_FALSE(FindMessageBox(Running()));
}

TEST_F(Dialog, TellsOfEachFolderThatItCannotEnter) {
  ASSERT_TRUE(OpenUpload(""));
  Login login = LoginTo(LoggingIn() + Answering("CWD a", "550 no") + Answering("CWD b", "550 no") +
                        Answering("CWD c", "250") + Listing("") + kLeaving);
  login.folder = "a/b/c";
  FillInLogin(login);
  FtpItem(IDC_FTP_CONNECT).Click();
  for (const char* folder : {"a", "b"}) {
    EXPECT_EQ(NextMessage(), (Told{"WARNING. Can't access to '" + std::string(folder) +
                                       "' remote folder, specified in web url",
                                   BoxIcon::kWarning}));
  }
  EXPECT_TRUE(WaitUntil([this] { return LooksConnected(); }));
}

TEST_F(Dialog, TellsOfAServerThatGoesAwayMeanwhile) {
  ASSERT_TRUE(OpenUpload(""));
  Login login = LoginTo(LoggingIn() + Script{Expect("CWD a"), Close()});
  login.folder = "a";
  FillInLogin(login);
  FtpItem(IDC_FTP_CONNECT).Click();
  EXPECT_EQ(NextMessage(), (Told{"no response", BoxIcon::kWarning}));
  EXPECT_EQ(NextMessage(), (Told{"Connection lost", BoxIcon::kWarning}));
  EXPECT_TRUE(WaitUntil([this] { return LooksDisconnected(); }));
}

TEST_F(Dialog, TellsThatThereIsNoServer) {
  ASSERT_TRUE(OpenUpload(""));
  const RefusingPort nobody;
  for (const std::string& host :
       {"127.0.0.1:" + std::to_string(nobody.Port()), std::string("no.such.host.invalid"), std::string(),
        std::string("127.0.0.1:ftp")}) {
    FillInLogin(Login{.host = host});
    FtpItem(IDC_FTP_CONNECT).Click();
    const Told told = NextMessage();
    const int code =
        host.starts_with("127.0.0.1:") && host != "127.0.0.1:ftp" ? kNetConnectTimedOut : kNetBadAddress;
    EXPECT_EQ(told, (Told{CUT_ERR::GetErrorString(code), BoxIcon::kWarning})) << host;
    EXPECT_TRUE(WaitUntil([this] { return LooksDisconnected(); }));
  }
  EXPECT_EQ(ReadProfile("FTP", "host"), std::nullopt);
  EXPECT_EQ(ReadProfile("FTP", "bFirewall"), "1");
}

TEST_F(Dialog, ConnectsOnceHoweverOftenItIsAsked) {
  ASSERT_TRUE(OpenUpload(""));
  FillInLogin(LoginTo(Script{Gate()} + LoggingIn() + Listing("") + kLeaving));
  FtpItem(IDC_FTP_CONNECT).Click();
  ASSERT_TRUE(IsAtGate());
  // It answers meanwhile.
  EXPECT_TRUE(Ftp().AnswerTime(kPromptly));
  for (const int id : {IDC_FTP_CONNECT, IDC_FTP_REFRESH, IDC_FTP_UPLOAD, IDC_FTP_REMOVE, IDC_FTP_DISCONNECT,
                       IDC_FTP_UPDATE_INDEX, IDC_FTP_ABORT}) {
    FtpItem(id).Click();
  }
  PostTimer();
  WaitForTurn();
  Go();
  EXPECT_TRUE(WaitUntil([this] { return LooksConnected(); }));
}

TEST_F(Dialog, ClosesWhileAServerIsSilent) {
  ASSERT_TRUE(OpenUpload(""));
  FillInLogin(LoginTo({Gate()}));
  FtpItem(IDC_FTP_CONNECT).Click();
  ASSERT_TRUE(IsAtGate());
  const Window dialog = Ftp();
  const ULONGLONG start = GetTickCount64();
  dialog.Post(WM_CLOSE);
  EXPECT_TRUE(dialog.WaitUntilGone());
  EXPECT_LT(GetTickCount64() - start, kPromptly);
  EXPECT_FALSE(FindMessageBox(Running()));
  Go();
}

}  // namespace
