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

struct PasvCase {
  std::string reply;
  int retr;
  int stor;
  int list;
};

TEST_F(FtpPassive, UnderstandsOrRefusesTheAnswer) {
  const std::string padding(90, '.');
  const PasvCase cases[] = {
      {"227 no numbers at all", 48, 51, 50},
      {"227", 48, 51, 50},
      {"227 127,0,0,1,4,210", 48, 51, 50},
      {"227 " + padding + "........(127,0,0,1,4,210)", 48, 51, 50},  // beyond the text that is kept
      {"227 " + padding + "(127,0,0,1,4,210)", 14, 14, 14},          // cut within the address
      {"227 (", 14, 14, 14},
      {"227 ()", 14, 14, 14},
      {"227 (127,0,0)", 14, 14, 14},
      {"227 (a,b,c,d,e,f)", 14, 14, 14},
      {"227 (256,0,0,1,4,210)", 14, 14, 14},
      {"227 (255,255,255,255,4,210)", 14, 14, 14},
      {"227 (0,0,0,0,4,210)", 14, 14, 14},
      {"227 (0,1,2,3,4,210)", 14, 14, 14},
      {"227 (224,0,0,1,4,210)", 14, 14, 14},
      {"227 (240,0,0,1,4,210)", 14, 14, 14},
      {"227 (-1,0,0,1,4,210)", 14, 14, 14},
      {"227 (127,0,0,1)", 4, 4, 8},
      {"227 (127,0,0,1,0,0)", 4, 4, 8},
      {"227 (127,0,0,1,273,112)", 4, 4, 8},
      {"227 (127,0,0,1,99999999999,1)", 4, 4, 8},
      {"150 not yet", 49, 49, 49},
      {"350 what", 49, 49, 49},
      {"425 cannot", 49, 49, 49},
      {"502 no PASV", 49, 49, 49},
      {"Entering (127,0,0,1,4,210)", 38, 38, 38},
  };
  Script script;
  for (const PasvCase& pasv : cases) {
    for (int i = 0; i < 3; ++i) script = script + Script{Expect("PASV"), Reply(pasv.reply)};
  }
  LogInTo(script + InStep());
  FakeSource source("x");
  for (const PasvCase& pasv : cases) {
    EXPECT_EQ(m_client.ReceiveFile(source, "x"), pasv.retr) << pasv.reply;
    EXPECT_EQ(m_client.SendFile(source, "x"), pasv.stor) << pasv.reply;
    EXPECT_EQ(m_client.List(), pasv.list) << pasv.reply;
  }
  EXPECT_TRUE(source.modes.empty());
  ExpectInStep();
}

TEST_F(FtpPassive, JudgesThePreliminaryReply) {
  const struct {
    const char* reply;
    int retr;
    int stor;
    int list;
  } cases[] = {{"350 x", 48, 51, 14}, {"425 x", 48, 51, 14}, {"550 x", 48, 51, 14}, {"x", 38, 38, 38}};
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
    EXPECT_EQ(m_client.ReceiveFile(source, "x"), preliminary.retr) << preliminary.reply;
    EXPECT_EQ(m_client.SendFile(source, "x"), preliminary.stor) << preliminary.reply;
    EXPECT_EQ(m_client.List(), preliminary.list) << preliminary.reply;
  }
  EXPECT_EQ(source.bytes, "x") << "not emptied for what does not come";
  EXPECT_EQ(source.openNow, 0);
  ExpectInStep();
}

TEST_F(FtpPassive, JudgesTheFinalReply) {
  const struct {
    const char* reply;
    int code;
  } cases[] = {{"150 x", 4}, {"226 x", 0}, {"299 x", 0}, {"350 x", 4}, {"426 x", 4}, {"552 x", 4}, {"x", 38}};
  Script script;
  for (const auto& last : cases) {
    script =
        script + Script{AnswerPasv(),  Expect("RETR x"),  AcceptData(),     Say("125 go"),    SendData("y"),
                        CloseData(),   Reply(last.reply), AnswerPasv(),     Expect("STOR x"), AcceptData(),
                        Say("200 go"), HearData(),        Reply(last.reply)};
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
