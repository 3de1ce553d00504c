// With whom the data connection is made: not with everybody who is there.
#include "net/ftp_test.h"

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
  EXPECT_LT(watch.Elapsed(), 15000U);
  ExpectInStep();
}

}  // namespace
