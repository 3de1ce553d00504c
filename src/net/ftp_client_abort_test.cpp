// An abort while the client waits: it ends the wait, and is told as an abort.
#include "net/testing/ftp_fixture.h"

namespace {

// The user's wish to stop, and a little later its end to a wait. What the server then says is read.
class AbortingListener : public WaitListener {
 public:
  explicit AbortingListener(FtpClient& client) : m_client(client) {}

  bool OnWait() override {
    ++m_nTurns;
    if (m_nTurns == 5) m_client.aborted = true;
    return m_nTurns != 10;
  }
  bool HasAborted() const { return m_nTurns >= 10; }

 private:
  FtpClient& m_client;
  int m_nTurns = 0;
};

class FtpAborts : public FtpTest {
 protected:
  void LogInAndListen(const Script& script) {
    LogInTo(script + InStep());
    m_client.SetDataTimeouts(30000, 30000);
    m_client.SetWaitListener(&m_listener);
  }
  void ExpectAborted(int code) {
    EXPECT_EQ(code, kNetAborted);
    EXPECT_TRUE(m_listener.HasAborted()) << "it waited";
    EXPECT_LT(m_watch.Elapsed(), 20000U) << "the time-out is 30 s";
    EXPECT_EQ(m_source.openNow, 0);
    m_client.aborted = false;
    m_client.SetWaitListener(nullptr);
    ExpectInStep();
  }

  AbortingListener m_listener{m_client};
  FakeSource m_source;
  Stopwatch m_watch;
};

TEST_F(FtpAborts, EndADownloadFromASilentServer) {
  m_client.SetPassive(true);
  LogInAndListen({AnswerPasv(), Expect("RETR x"), AcceptData(), Say("150"), SendData("a"), ExpectDataLeft(),
                  Say("426")});
  ExpectAborted(m_client.ReceiveFile(m_source, "x"));
}

TEST_F(FtpAborts, EndADownloadInActiveMode) {
  LogInAndListen({AnswerPort(), Expect("RETR x"), Say("150"), ConnectData(), SendData("a"), ExpectDataLeft(),
                  Say("426")});
  ExpectAborted(m_client.ReceiveFile(m_source, "x"));
}

TEST_F(FtpAborts, EndAnUploadToAServerThatDoesNotReceive) {
  m_client.SetPassive(true);
  m_source.bytes.assign(64 << 20, 'x');
  LogInAndListen({AnswerPasv(), Expect("STOR x"), AcceptData(), Say("150"),
                  [this](ScriptedServer::Stage&) {
                    for (int i = 0; i < 12000 && !m_listener.HasAborted(); ++i) SleepFor(10);
                    return m_listener.HasAborted();
                  },
                  CloseData(), Say("426")});
  ExpectAborted(m_client.SendFile(m_source, "x"));
}

// The server takes what it has said for the whole of the list.
TEST_F(FtpAborts, LetNoHalfListPassForAWholeOne) {
  m_client.SetPassive(true);
  LogInAndListen({AnswerPasv(), Expect("LIST"), AcceptData(), Say("150"), SendData("x\r\n"), ExpectDataLeft(),
                  Say("226")});
  ExpectAborted(m_client.List());
}

TEST_F(FtpAborts, EndTheWaitForAServerThatDoesNotCome) {
  LogInAndListen({AnswerPort(), Expect("LIST"), Say("425")});
  ExpectAborted(m_client.List());
}

TEST_F(FtpAborts, AreToldWhenADataConnectionIsNotMade) {
  LogInTo(Script{AnswerPasv("127.0.0.1", "127.0.0.2"), Expect("LIST"), Say("425")} + InStep());
  m_client.aborted = true;
  EXPECT_EQ(m_client.ListPassive(), kNetAborted);
  m_client.aborted = false;
  ExpectInStep();
}

TEST_F(FtpAborts, AreToldWhenTheConnectionIsNotMade) {
  m_client.aborted = true;
  const RefusingPort nobody;
  m_client.SetControlPort(nobody.Port());
  EXPECT_EQ(Connect(), kNetAborted);
  EXPECT_EQ(m_client.codes.back(), kNetAborted);
}

TEST_F(FtpAborts, ChangeNothingAboutOtherFailures) {
  m_client.aborted = true;
  EXPECT_EQ(m_client.FTPConnect("no-such-name.invalid", "ann", "secret"), kNetBadAddress);
}

}  // namespace
