// With whom the data connection is made: not with everybody who is there.
#include "net/testing/ftp_fixture.h"

namespace {

using Stage = ScriptedServer::Stage;
using Step = ScriptedServer::Step;

constexpr char kStrangersAddress[] = "127.0.0.3";

class FtpStrangers : public FtpTest {
 protected:
  // Somebody else is the first to reach the offered port, and says so much.
  Step LetStrangerIn(const std::string& says = "") {
    return [this, says](Stage& stage) {
      m_stranger = ConnectToLoopback(stage.offered, kStrangersAddress);
      return m_stranger.Say(says);
    };
  }
  void ExpectStrangerSentAway() {
    EXPECT_TRUE(m_stranger.IsLeftByPeer());
    m_stranger.Close();
  }

  TestSocket m_stranger;
};

TEST_F(FtpStrangers, GetNoFile) {
  LogInTo(Script{AnswerPort(), Expect("STOR x"), Say("150"), LetStrangerIn(), ConnectData(), HearData(),
                 Say("226")} +
          InStep());
  FakeSource source("for the server");
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetSuccess);
  ExpectStrangerSentAway();
  ExpectInStep();
  EXPECT_EQ(m_server->HeardOnData(), "for the server");
}

TEST_F(FtpStrangers, GiveNoFile) {
  LogInTo(Script{AnswerPort(), Expect("RETR x"), Say("150"), LetStrangerIn("false"), ConnectData(),
                 SendData("true"), CloseData(), Say("226")} +
          InStep());
  FakeSource source;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetSuccess);
  EXPECT_EQ(source.bytes, "true");
  ExpectStrangerSentAway();
  ExpectInStep();
}

TEST_F(FtpStrangers, ListNothing) {
  LogInTo(Script{AnswerPort(), Expect("LIST"), LetStrangerIn("12-31-99  11:59PM 7 false\r\n"), ConnectData(),
                 Say("150"), SendData("12-31-99  11:59PM 7 true\r\n"), CloseData(), Say("226")} +
          InStep());
  EXPECT_EQ(m_client.List(), kNetSuccess);
  ASSERT_EQ(m_client.GetDirEntryCount(), 1);
  FtpDirEntry entry;
  EXPECT_EQ(m_client.GetDirEntry(0, entry), kNetSuccess);
  EXPECT_STREQ(entry.name, "true");
  ExpectInStep();
}

TEST_F(FtpStrangers, DoNotReplaceAServerThatDoesNotCome) {
  LogInTo(Script{AnswerPort(), Expect("STOR x"), Say("150"), LetStrangerIn(), Say("425 cannot")} + InStep());
  FakeSource source("for the server");
  const Stopwatch watch;
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetDataConnectionFailed);
  EXPECT_GE(watch.Elapsed(), 4900U) << "the server had its time all the same";
  ExpectInStep();
}

TEST_F(FtpStrangers, LeaveTheServerOnlyWhatIsLeftOfItsTime) {
  const auto letThreeSecondsPass = [this](ScriptedServer::Stage&) {
    m_time.PassDuringWait(5000, 3000);
    return true;
  };
  LogInTo(Script{AnswerPort(), Expect("STOR x"), Say("150"), letThreeSecondsPass, LetStrangerIn(),
                 Say("425 cannot")} +
          InStep());
  m_client.SetDataTimeouts(60000, 60000);
  FakeSource source("for the server");
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetDataConnectionFailed);
  for (const long long wait : m_time.vainWaits) EXPECT_LE(wait, 2000) << "of 5 s, 3 are over";
  ExpectInStep();
}

struct PassiveCase {
  const char* listensAt;
  const char* named;
  bool toControl;
  int code;
};

// The connection for commands goes to 127.0.0.1.
TEST_F(FtpStrangers, AreNotFollowedWhenToldSo) {
  const PassiveCase cases[] = {
      {"127.0.0.1", "127.0.0.1", false, kNetSuccess}, {"127.0.0.1", "127.0.0.1", true, kNetSuccess},
      {"127.0.0.2", "127.0.0.2", false, kNetSuccess}, {"127.0.0.2", "127.0.0.2", true, kNetConnectTimedOut},
      {"127.0.0.1", "127.0.0.2", true, kNetSuccess},  {"127.0.0.1", "10.255.255.1", true, kNetSuccess},
  };
  m_client.SetPassive(true);
  FakeSource source("x");
  for (const PassiveCase& pasv : cases) {
    m_client.SetPassiveToControlAddress(pasv.toControl);
    const bool isMade = pasv.code == kNetSuccess;
    const Script rest =
        isMade ? Script{AcceptData(), Say("150"), HearData(), Say("226")} : Script{Say("425")};
    LogInTo(Script{AnswerPasv(pasv.listensAt, pasv.named), Expect("STOR x")} + rest + InStep());
    EXPECT_EQ(m_client.SendFile(source, "x"), pasv.code) << pasv.named << " " << pasv.toControl;
    ExpectInStep();
    EXPECT_EQ(m_server->HeardOnData(), isMade ? "x" : "");
  }
}

TEST_F(FtpStrangers, AreNotFollowedForAListingEither) {
  m_client.SetPassive(true);
  m_client.SetPassiveToControlAddress(true);
  LogInTo(Script{AnswerPasv("127.0.0.1", "127.0.0.2"), Expect("LIST"), AcceptData(), Say("150"), CloseData(),
                 Say("226")} +
          InStep());
  EXPECT_EQ(m_client.List(), kNetSuccess);
  ExpectInStep();
}

TEST_F(FtpStrangers, WithAnAddressThatNoServerHasAreRefused) {
  Script script;
  const char* const refused[] = {"0.0.0.0", "0.1.2.3", "224.0.0.1", "239.255.255.255", "255.255.255.255"};
  for (const char* address : refused) script = script + Script{AnswerPasv("127.0.0.1", address)};
  m_client.SetPassive(true);
  m_client.SetPassiveToControlAddress(true);
  LogInTo(script + InStep());
  FakeSource source("x");
  for (const char* address : refused) {
    EXPECT_EQ(m_client.SendFile(source, "x"), kNetDataConnectionFailed) << address;
  }
  ExpectInStep();
}

}  // namespace
