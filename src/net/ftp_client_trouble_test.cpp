// What can go wrong on and around a data connection.
#include <functional>

#include "net/testing/ftp_fixture.h"

namespace {

class FtpTrouble : public FtpTest {
 protected:
  void SetUp() override { m_client.SetPassive(true); }

  // Names a port that the server does not open.
  static ScriptedServer::Step AnswerPasvWith(std::uint16_t port) {
    const std::string numbers = std::to_string(port / 256) + "," + std::to_string(port % 256);
    return [numbers](ScriptedServer::Stage& stage) {
      return Expect("PASV")(stage) && Say("227 Entering (127,0,0,1," + numbers + ")")(stage);
    };
  }

  const RefusingPort m_nobody;
};

TEST_F(FtpTrouble, EndsWhenTheServerGoesAtAnyStep) {
  const Script download = {AnswerPasv(), Expect("RETR x"), AcceptData(),
                           Say("150"),   SendData("y"),    CloseData()};
  const Script upload = {AnswerPasv(), Expect("STOR x"), AcceptData(), Say("150"), HearData()};
  const Script listing = {AnswerPasv(), Expect("LIST"),    AcceptData(),
                          Say("150"),   SendData("y\r\n"), CloseData()};
  FakeSource source("x");
  const struct {
    const Script& script;
    std::function<int()> run;
  } operations[] = {{download, [&] { return m_client.ReceiveFile(source, "x"); }},
                    {upload, [&] { return m_client.SendFile(source, "x"); }},
                    {listing, [&] { return m_client.List(); }}};
  for (const auto& [script, run] : operations) {
    for (size_t steps = 0; steps <= script.size(); ++steps) {
      LogInTo(Script(script.begin(), script.begin() + static_cast<long>(steps)) + Script{Close()});
      const int code = run();
      // Without a data port, which goes with the server, the connection cannot be made; with one, the
      // reply is missing.
      const bool mayMissPort = steps == 1 || steps == 2;
      EXPECT_TRUE(code == kNetNoResponse || (mayMissPort && code == kNetConnectTimedOut))
          << code << " at " << steps;
      EXPECT_EQ(m_time.vainWaits.size(), 0U);
      EXPECT_EQ(source.openNow, 0);
      ExpectPlayed();
    }
  }
}

TEST_F(FtpTrouble, ReportsADataPortThatIsRefused) {
  // The server says why, before or after it has tried, or never does.
  const Script said = {AnswerPasvWith(m_nobody.Port()), Expect("RETR x"), Say("425 cannot")};
  const Script saidLater = {AnswerPasvWith(m_nobody.Port()), Expect("STOR x"), Say("150 trying"), Wait(500),
                            Say("425 cannot")};
  const Script silent = {AnswerPasvWith(m_nobody.Port()), Expect("LIST")};
  LogInTo(said + Script{Expect("NOOP"), Say("200 own")} + saidLater + Script{Expect("NOOP"), Say("200 own")} +
          silent + InStep());
  FakeSource source("x");
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetConnectTimedOut);
  EXPECT_EQ(m_client.NoOp(), kNetSuccess);
  EXPECT_STREQ(m_client.GetLastReplyText(), "200 own");
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetConnectTimedOut);
  EXPECT_EQ(m_client.NoOp(), kNetSuccess);
  EXPECT_STREQ(m_client.GetLastReplyText(), "200 own");
  EXPECT_EQ(m_client.List(), kNetConnectTimedOut);
  EXPECT_EQ(source.bytes, "x") << "not emptied for what does not come";
  EXPECT_EQ(source.openNow, 0);
  ExpectInStep();
  EXPECT_EQ(m_time.vainWaits, std::vector<long long>{5000}) << "for the server that never says it";
}

TEST_F(FtpTrouble, WaitsForNoLateReplyOnANewConnection) {
  LogInTo({AnswerPasvWith(m_nobody.Port()), Expect("RETR x"), Expect("Quit")});
  const auto first = std::move(m_server);
  FakeSource source;
  EXPECT_NE(m_client.ReceiveFile(source, "x"), kNetSuccess);
  Serve(Greeting() + Settings() + InStep());
  EXPECT_EQ(Connect(), kNetSuccess);
  EXPECT_EQ(m_time.vainWaits.size(), 0U);
  ExpectInStep();
  EXPECT_EQ(first->Finish(), "");
}

TEST_F(FtpTrouble, WaitsNoLongerForLateRepliesThanForOthers) {
  const auto stall = [](ScriptedServer::Stage& stage) {
    for (int i = 0; i < 100 && stage.control.Say("150 soon\r\n"); ++i) SleepFor(90);
    return true;
  };
  m_time.RunAt(10);
  LogInTo({AnswerPasvWith(m_nobody.Port()), Expect("RETR x"), stall});
  m_client.SetDataTimeouts(1000, 1000);
  FakeSource source;
  EXPECT_NE(m_client.ReceiveFile(source, "x"), kNetSuccess);
  const Stopwatch watch;
  m_client.NoOp();
  EXPECT_LT(watch.Elapsed(), 60000U) << "the server says so for ninety seconds";
  ExpectPlayed();
}

TEST_F(FtpTrouble, WaitsForASlowServer) {
  LogInTo(Script{AnswerPasv(), Expect("RETR x"), Wait(300), AcceptData(), Wait(300), Say("150"), Wait(300),
                 SendData("a"), Wait(300), SendData("b"), Wait(300), CloseData(), Wait(300), Say("226")} +
          InStep());
  FakeSource source;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetSuccess);
  EXPECT_EQ(source.bytes, "ab");
  ExpectInStep();
}

TEST_F(FtpTrouble, ReportsAConnectionThatIsReset) {
  LogInTo(Script{AnswerPasv(), Expect("RETR x"), AcceptData(), Say("150"), SendData("a"), Wait(300),
                 ResetData(), Say("426 reset"), AnswerPasv(), Expect("STOR x"), AcceptData(), Say("150"),
                 Wait(300), ResetData(), Say("426 reset")} +
          InStep());
  FakeSource source;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetReceiveFailed);
  EXPECT_EQ(source.bytes, "a");
  FakeSource large(std::string(50 << 20, 'x'));
  EXPECT_EQ(m_client.SendFile(large, "x"), kNetSendFailed);
  EXPECT_EQ(source.openNow + large.openNow, 0);
  ExpectInStep();
}

TEST_F(FtpTrouble, EndsWithItsTimeOutsOnASilentDataConnection) {
  LogInTo(Script{AnswerPasv(), Expect("RETR x"), AcceptData(), Say("150"), SendData("a"), ExpectDataLeft(),
                 Say("426"), AnswerPasv(), Expect("STOR x"), AcceptData(), Say("150"), Wait(1500),
                 CloseData(), Say("426")} +
          InStep());
  m_client.SetDataTimeouts(1000, 1000);
  FakeSource source;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetReceiveFailed);
  EXPECT_EQ(source.bytes, "a");
  FakeSource large(std::string(50 << 20, 'x'));
  EXPECT_EQ(m_client.SendFile(large, "x"), kNetSendFailed);
  ExpectInStep();
}

TEST_F(FtpTrouble, IsAbortedWhateverTheServerSends) {
  const Script endless = {
      AnswerPasv(),       Expect("RETR x"), AcceptData(), Say("150"), SendDataForEver(std::string(1000, 'x')),
      Say("426 so be it")};
  LogInTo(endless + endless + InStep());
  FakeSource source;
  m_client.stopAtBytes = 100000;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetAborted);
  EXPECT_EQ(source.openNow, 0);
  m_client.stopAtBytes = std::numeric_limits<long>::max();
  m_client.abortAfterQuestions = m_client.abortQuestions + 50;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetAborted);
  EXPECT_EQ(source.openNow, 0);
  m_client.abortAfterQuestions = std::numeric_limits<int>::max();
  ExpectInStep();
}

TEST_F(FtpTrouble, IsAbortedAlsoWhenTheHooksGoOn) {
  LogInTo(Script{AnswerPasv(), Expect("RETR x"), AcceptData(), Say("150"), SendData(std::string(99999, 'x')),
                 ExpectDataLeft(), Say("426"), AnswerPasv(), Expect("STOR x"), AcceptData(), Say("150"),
                 HearData(), Say("226")} +
          InStep());
  m_client.hooksGoOn = true;
  FakeSource source;
  m_client.abortAfterQuestions = m_client.abortQuestions + 50;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetAborted);
  source.bytes.assign(99999, 'x');
  m_client.abortAfterQuestions = m_client.abortQuestions + 50;
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetAborted);
  m_client.abortAfterQuestions = std::numeric_limits<int>::max();
  ExpectInStep();
  EXPECT_LT(m_server->HeardOnData().size(), 50000U);
}

TEST_F(FtpTrouble, IsAbortedBeforeTheCommand) {
  LogInTo(Script{AnswerPasv(), AnswerPasv()} + InStep());
  m_client.aborted = true;
  FakeSource source("x");
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetAborted);
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetAborted);
  EXPECT_TRUE(source.modes.empty());
  m_client.aborted = false;
  ExpectInStep();
}

TEST_F(FtpTrouble, IsAbortedWhileItSends) {
  LogInTo(Script{AnswerPasv(), Expect("STOR x"), AcceptData(), Say("150"), HearData(), Say("226")} +
          InStep());
  FakeSource source(std::string(10000, 'x'));
  m_client.stopAtBytes = 1000;
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetAborted);
  ExpectInStep();
  EXPECT_EQ(m_server->HeardOnData().size(), 1020U);
}

// The server would make the file, or empty the one that it has.
TEST_F(FtpTrouble, StoresNothingWhenTheSourceCannotBeOpened) {
  LogInTo(Script{AnswerPasv(), AnswerPort(), Expect("NOOP"), ConnectDataInVain(), Say("200")} + InStep());
  FakeSource source("x");
  source.refusedMode = kSourceRead;
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetSourceNotOpened);
  m_client.SetPassive(false);
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetSourceNotOpened);
  EXPECT_EQ(m_client.NoOp(), kNetSuccess);
  ExpectInStep();
}

TEST_F(FtpTrouble, ReportsASourceThatFails) {
  const Script download = {AnswerPasv(),  Expect("RETR x"), AcceptData(), Say("150"),
                           SendData("x"), ExpectDataLeft(), Say("426")};
  LogInTo(download + download + InStep());
  FakeSource source("x");
  source.refusedMode = kSourceWrite;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetSourceNotOpened);
  source.refusedMode = -1;
  source.failingFrom = 0;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetSourceNotWritten);
  EXPECT_EQ(source.openNow, 0);
  ExpectInStep();
}

}  // namespace
