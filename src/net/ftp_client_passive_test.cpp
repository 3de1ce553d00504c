#include "net/testing/ftp_fixture.h"
#include "support/temporary_folder.h"

namespace {

class FtpPassive : public FtpTest {
 protected:
  void SetUp() override { m_client.SetPassive(true); }
};

TEST_F(FtpPassive, SendsAFile) {
  LogInTo(
      Script{AnswerPasv(), Expect("STOR a b.txt"), AcceptData(), Say("150 go"), HearData(), Say("226 done")} +
      InStep());
  FakeSource source(std::string(1000, 'x') + '\0' + "\r\n");
  EXPECT_EQ(m_client.SendFile(source, "a b.txt"), kNetSuccess);
  EXPECT_EQ(m_client.progress, (std::vector<long>{255, 510, 765, 1003}));
  EXPECT_EQ(source.openNow, 0);
  ExpectInStep();
  EXPECT_EQ(m_server->HeardOnData(), source.bytes);
}

TEST_F(FtpPassive, ReceivesAFileAndWaitsForNoChunk) {
  const std::string bytes = std::string(1000, 'x') + '\0' + "\r\n";
  LogInTo(Script{AnswerPasv(), Expect("RETR a b.txt"), AcceptData(), Say("150 go"), SendData(bytes),
                 CloseData(), Say("226 done")} +
          InStep());
  FakeSource source("before");
  EXPECT_EQ(m_client.ReceiveFile(source, "a b.txt"), kNetSuccess);
  EXPECT_EQ(source.bytes, bytes);
  EXPECT_EQ(source.modes, std::vector<int>{kSourceWrite});
  EXPECT_EQ(m_client.progress.back(), 1003);
  ExpectInStep();
}

TEST_F(FtpPassive, MovesNothingAsWell) {
  LogInTo(Script{AnswerPasv(), Expect("STOR x"), AcceptData(), Say("150"), HearData(), Say("226"),
                 AnswerPasv(), Expect("RETR x"), AcceptData(), Say("150"), CloseData(), Say("226")} +
          InStep());
  FakeSource source;
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetSuccess);
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetSuccess);
  EXPECT_EQ(source.bytes, "");
  ExpectInStep();
  EXPECT_EQ(m_server->HeardOnData(), "");
}

TEST_F(FtpPassive, MovesFilesByName) {
  const TemporaryFolder folder;
  WriteFile(folder.Path("up"), "upwards");
  const Script upload = {AnswerPasv(), Expect("STOR u"), AcceptData(), Say("150"), HearData(), Say("226")};
  const Script download = {AnswerPasv(),         Expect("RETR d"), AcceptData(), Say("150"),
                           SendData("downward"), CloseData(),      Say("226")};
  LogInTo(upload + upload + download + download + InStep());
  EXPECT_EQ(m_client.SendFileByName(folder.Path("up").c_str(), "u"), kNetSuccess);
  m_client.SetPassive(false);
  EXPECT_EQ(m_client.SendFilePassiveByName(folder.Path("up").c_str(), "u"), kNetSuccess);
  EXPECT_EQ(m_client.ReceiveFilePassiveByName("d", folder.Path("one").c_str()), kNetSuccess);
  m_client.SetPassive(true);
  EXPECT_EQ(m_client.ReceiveFileByName("d", folder.Path("two").c_str()), kNetSuccess);
  EXPECT_EQ(ReadFile(folder.Path("one")), "downward");
  EXPECT_EQ(ReadFile(folder.Path("two")), "downward");
  ExpectInStep();
  EXPECT_EQ(m_server->HeardOnData(), "upwardsupwards");
}

// What comes of a file received, one sent, and a list.
struct Outcome {
  int retr;
  int stor;
  int list;
};

constexpr Outcome kNoBracket = {kNetRetrFailed, kNetStorFailed, kNetListFailed};
constexpr Outcome kBadAddress = {kNetDataConnectionFailed, kNetDataConnectionFailed,
                                 kNetDataConnectionFailed};
constexpr Outcome kBadPort = {kNetTerminated, kNetTerminated, kNetDataPortNotOpened};
constexpr Outcome kRefused = {kNetPortFailed, kNetPortFailed, kNetPortFailed};
constexpr Outcome kNoReply = {kNetNoResponse, kNetNoResponse, kNetNoResponse};

struct PasvCase {
  std::string reply;
  Outcome outcome;
};

TEST_F(FtpPassive, UnderstandsOrRefusesTheAnswer) {
  const std::string padding(90, '.');
  const PasvCase cases[] = {
      {"227 no numbers at all", kNoBracket},
      {"227", kNoBracket},
      {"227 127,0,0,1,4,210", kNoBracket},
      {"227 " + padding + "........(127,0,0,1,4,210)", kNoBracket},  // beyond the text that is kept
      {"227 " + padding + "(127,0,0,1,4,210)", kBadAddress},         // cut within the address
      {"227 (", kBadAddress},
      {"227 ()", kBadAddress},
      {"227 (127,0,0)", kBadAddress},
      {"227 (a,b,c,d,e,f)", kBadAddress},
      {"227 (256,0,0,1,4,210)", kBadAddress},
      {"227 (255,255,255,255,4,210)", kBadAddress},
      {"227 (0,0,0,0,4,210)", kBadAddress},
      {"227 (0,1,2,3,4,210)", kBadAddress},
      {"227 (224,0,0,1,4,210)", kBadAddress},
      {"227 (240,0,0,1,4,210)", kBadAddress},
      {"227 (-1,0,0,1,4,210)", kBadAddress},
      {"227 (127,0,0,1)", kBadPort},
      {"227 (127,0,0,1,0,0)", kBadPort},
      {"227 (127,0,0,1,273,112)", kBadPort},
      {"227 (127,0,0,1,99999999999,1)", kBadPort},
      {"199 not yet", kRefused},
      {"300 what", kRefused},
      {"425 cannot", kRefused},
      {"502 no PASV", kRefused},
      {"Entering (127,0,0,1,4,210)", kNoReply},
  };
  Script script;
  for (const PasvCase& pasv : cases) {
    for (int i = 0; i < 3; ++i) script = script + Script{Expect("PASV"), Reply(pasv.reply)};
  }
  LogInTo(script + InStep());
  FakeSource source("x");
  for (const PasvCase& pasv : cases) {
    EXPECT_EQ(m_client.ReceiveFile(source, "x"), pasv.outcome.retr) << pasv.reply;
    EXPECT_EQ(m_client.SendFile(source, "x"), pasv.outcome.stor) << pasv.reply;
    EXPECT_EQ(m_client.List(), pasv.outcome.list) << pasv.reply;
  }
  EXPECT_TRUE(source.modes.empty());
  ExpectInStep();
}

TEST_F(FtpPassive, JudgesThePreliminaryReply) {
  constexpr Outcome kNotBegun = {kNetRetrFailed, kNetStorFailed, kNetDataConnectionFailed};
  const PasvCase cases[] = {
      {"300 x", kNotBegun}, {"425 x", kNotBegun}, {"550 x", kNotBegun}, {"x", kNoReply}};
  Script script;
  for (const auto& preliminary : cases) {
    for (const char* command : {"RETR x", "STOR x", "LIST"}) {
      script = script +
               Script{AnswerPasv(), Expect(command), AcceptData(), Say(preliminary.reply), ExpectDataLeft()};
    }
  }
  LogInTo(script + InStep());
  FakeSource source("x");
  for (const auto& preliminary : cases) {
    EXPECT_EQ(m_client.ReceiveFile(source, "x"), preliminary.outcome.retr) << preliminary.reply;
    EXPECT_EQ(m_client.SendFile(source, "x"), preliminary.outcome.stor) << preliminary.reply;
    EXPECT_EQ(m_client.List(), preliminary.outcome.list) << preliminary.reply;
  }
  EXPECT_EQ(source.bytes, "x") << "not emptied for what does not come";
  EXPECT_EQ(source.openNow, 0);
  ExpectInStep();
}

TEST_F(FtpPassive, JudgesTheFinalReply) {
  const struct {
    const char* reply;
    int code;
  } cases[] = {{"199 x", kNetTerminated}, {"200 x", kNetSuccess},    {"299 x", kNetSuccess},
               {"300 x", kNetTerminated}, {"426 x", kNetTerminated}, {"552 x", kNetTerminated},
               {"x", kNetNoResponse}};
  Script script;
  for (const auto& last : cases) {
    script =
        script + Script{AnswerPasv(),  Expect("RETR x"),  AcceptData(),     Say("100 go"),    SendData("y"),
                        CloseData(),   Reply(last.reply), AnswerPasv(),     Expect("STOR x"), AcceptData(),
                        Say("299 go"), HearData(),        Reply(last.reply)};
  }
  LogInTo(script + InStep());
  for (const auto& last : cases) {
    FakeSource source("x");
    EXPECT_EQ(m_client.ReceiveFile(source, "x"), last.code) << last.reply;
    EXPECT_EQ(m_client.SendFile(source, "x"), last.code) << last.reply;
  }
  ExpectInStep();
}

TEST_F(FtpPassive, ResumesWhereTheSourceEnds) {
  LogInTo(Script{AnswerPasv(), Expect("REST 5"), Say("350 go on"), Expect("RETR x"), AcceptData(), Say("150"),
                 SendData("56789"), CloseData(), Say("226")} +
          InStep());
  FakeSource source("01234");
  EXPECT_EQ(m_client.ResumeReceiveFile(source, "x"), kNetSuccess);
  EXPECT_EQ(source.bytes, "0123456789");
  EXPECT_EQ(source.modes, (std::vector<int>{kSourceRead, kSourceAppend}));
  EXPECT_EQ(source.openNow, 0);
  ExpectInStep();
}

TEST_F(FtpPassive, StartsAnewWithoutASource) {
  LogInTo(Script{AnswerPasv(), Expect("RETR x"), AcceptData(), Say("150"), SendData("new"), CloseData(),
                 Say("226")} +
          InStep());
  FakeSource source("old");
  source.refusedMode = kSourceRead;
  EXPECT_EQ(m_client.ResumeReceiveFile(source, "x"), kNetSuccess);
  EXPECT_EQ(source.bytes, "new");
  ExpectInStep();
}

TEST_F(FtpPassive, LeavesTheSourceAloneWhenItCannotResume) {
  Script script;
  const char* const replies[] = {"150", "250", "351", "450", "502", "x"};
  for (const char* reply : replies) script = script + Script{AnswerPasv(), Expect("REST 5"), Reply(reply)};
  LogInTo(script + Script{AnswerPasv()} + InStep());
  FakeSource source("01234");
  for (const char* reply : replies) {
    EXPECT_EQ(m_client.ResumeReceiveFile(source, "x"), reply[0] == 'x' ? kNetNoResponse : kNetRestRefused);
  }
  source.failsToSeek = true;
  EXPECT_EQ(m_client.ResumeReceiveFile(source, "x"), kNetSourceNotOpened) << "too large for a position";
  EXPECT_EQ(source.bytes, "01234");
  EXPECT_EQ(source.openNow, 0);
  ExpectInStep();
}

}  // namespace
