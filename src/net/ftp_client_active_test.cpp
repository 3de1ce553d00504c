#include "net/testing/ftp_fixture.h"
#include "support/open_handles.h"
#include "support/temporary_folder.h"

namespace {

class FtpActive : public FtpTest {
 protected:
  static Script Upload() {
    return {AnswerPort(), Expect("STOR x"), Say("150"), ConnectData(), HearData(), Say("226")};
  }
  static Script Download(const std::string& bytes) {
    return {AnswerPort(),    Expect("RETR x"), Say("150"), ConnectData(),
            SendData(bytes), CloseData(),      Say("226")};
  }
  static ScriptedServer::Step RefusePort(const std::string& reply) {
    return [reply](ScriptedServer::Stage& stage) {
      return stage.control.HearLine().starts_with("PORT ") && Reply(reply)(stage);
    };
  }
};

TEST_F(FtpActive, MovesFilesBothWays) {
  LogInTo(Upload() + Download("downwards") + InStep());
  FakeSource source(std::string(1000, 'x'));
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetSuccess);
  EXPECT_EQ(m_client.progress.back(), 1000);
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetSuccess);
  EXPECT_EQ(source.bytes, "downwards");
  EXPECT_EQ(source.openNow, 0);
  ExpectInStep();
  EXPECT_EQ(m_server->HeardOnData(), std::string(1000, 'x'));
}

TEST_F(FtpActive, BeginsAtAnyReplyOfTheFirstTwoClasses) {
  const char* const replies[] = {"100", "199", "200", "299"};
  Script script;
  for (const char* reply : replies) {
    script =
        script + Script{AnswerPort(), Expect("STOR x"), Say(reply), ConnectData(), HearData(), Say("226")};
  }
  LogInTo(script + InStep());
  for (const char* reply : replies) {
    FakeSource source("x");
    EXPECT_EQ(m_client.SendFile(source, "x"), kNetSuccess) << reply;
  }
  ExpectInStep();
}

TEST_F(FtpActive, MovesFilesByName) {
  const TemporaryFolder folder;
  WriteFile(folder.Path("file"), "01234");
  LogInTo(Upload() + Download("fresh") +
          Script{AnswerPort(), Expect("REST 5"), Say("350"), Expect("RETR x"), Say("150"), ConnectData(),
                 SendData(" more"), CloseData(), Say("226")} +
          InStep());
  const std::string path = folder.Path("file");
  EXPECT_EQ(m_client.SendFileByName(path.c_str(), "x"), kNetSuccess);
  EXPECT_EQ(m_client.ReceiveFileByName("x", path.c_str()), kNetSuccess);
  EXPECT_EQ(ReadFile(path), "fresh");
  EXPECT_EQ(m_client.ResumeReceiveFileByName("x", path.c_str()), kNetSuccess);
  EXPECT_EQ(ReadFile(path), "fresh more");
  ExpectInStep();
  EXPECT_EQ(m_server->HeardOnData(), "01234");
}

TEST_F(FtpActive, OffersOnePortAfterTheOther) {
  const std::vector<int> expected = {31999, 32000, 10000, 10001};
  std::vector<int> offered;
  // Another may have one of them for a moment.
  for (int i = 0; i < 20 && offered != expected; ++i) {
    LogInTo(Upload() + Upload() + Upload() + Upload() + InStep());
    FakeSource source("x");
    ASSERT_EQ(m_client.SetNextDataPort(31999), kNetSuccess);
    for (int port : expected) EXPECT_EQ(m_client.SendFile(source, "x"), kNetSuccess) << port;
    ExpectInStep();
    offered = m_server->OfferedPorts();
  }
  EXPECT_EQ(offered, expected);
}

// So that two clients, or one after the other, hardly ever want the same.
TEST_F(FtpActive, TakesItsFirstPortFromTheClock) {
  constexpr std::uint32_t kTaken = 128;  // ports that may not have been free
  for (int i = 0; i < 3; ++i) {
    const auto before = static_cast<std::uint32_t>(SystemTicks());
    CUT_FTPClient client;
    const std::uint32_t passed = static_cast<std::uint32_t>(SystemTicks()) - before;
    Serve(Greeting() + Settings() + Upload());
    client.SetControlPort(m_server->Port());
    ASSERT_EQ(client.FTPConnect("127.0.0.1", "ann", "secret"), kNetSuccess);
    FakeSource source("x");
    EXPECT_EQ(client.SendFile(source, "x"), kNetSuccess);
    EXPECT_EQ(m_server->Finish(), "");
    ASSERT_EQ(m_server->OfferedPorts().size(), 1U);
    const auto port = static_cast<std::uint32_t>(m_server->OfferedPorts()[0]);
    EXPECT_LE((port + 10000 - before % 20000) % 20000, passed + kTaken) << port << " at " << before;
    EXPECT_GE(port, 10000U);
    EXPECT_LT(port, 30000U + kTaken);
  }
}

// Every port of [first, first + count) is taken afterwards, by us or by another.
std::vector<std::unique_ptr<CUT_WSClient>> TakePorts(int first, int count) {
  std::vector<std::unique_ptr<CUT_WSClient>> takers;
  for (int port = first; port < first + count; ++port) {
    takers.push_back(std::make_unique<CUT_WSClient>());
    takers.back()->Listen(static_cast<std::uint16_t>(port));
  }
  return takers;
}

TEST_F(FtpActive, PassesPortsThatAreTaken) {
  bool isPassed = false;
  // Another may have the one that is to be free.
  for (int first = 20000; first < 29000 && !isPassed; first += 457) {
    LogInTo(Upload() + InStep());
    const auto takers = TakePorts(first, 127);
    ASSERT_EQ(m_client.SetNextDataPort(first), kNetSuccess);
    FakeSource source("x");
    const int sent = m_client.SendFile(source, "x");
    isPassed = sent == kNetSuccess;
    if (!isPassed) {
      EXPECT_EQ(sent, kNetDataConnectionFailed);
      m_client.FTPClose();
      continue;
    }
    ExpectInStep();
    EXPECT_EQ(m_server->OfferedPorts(), std::vector<int>{first + 127});
  }
  EXPECT_TRUE(isPassed);
}

TEST_F(FtpActive, GivesUpAfter128Ports) {
  LogInTo(InStep());
  const auto takers = TakePorts(24567, 128);
  FakeSource source("x");
  m_client.SetNextDataPort(24567);
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetDataConnectionFailed);
  m_client.SetNextDataPort(24567);
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetDataConnectionFailed);
  m_client.SetNextDataPort(24567);
  EXPECT_EQ(m_client.List(), kNetDataPortNotOpened);
  EXPECT_TRUE(source.modes.empty());
  ExpectInStep();
}

TEST_F(FtpActive, IsRefusedItsPort) {
  const char* const replies[] = {"199", "300", "425", "500", "x"};
  Script script;
  for (const char* reply : replies) {
    for (int i = 0; i < 3; ++i) script.push_back(RefusePort(reply));
  }
  LogInTo(script + InStep());
  FakeSource source("x");
  for (const char* reply : replies) {
    const int code = reply[0] == 'x' ? kNetNoResponse : kNetPortFailed;
    EXPECT_EQ(m_client.SendFile(source, "x"), code) << reply;
    EXPECT_EQ(m_client.ReceiveFile(source, "x"), code) << reply;
    EXPECT_EQ(m_client.List(), code) << reply;
  }
  EXPECT_TRUE(source.modes.empty());
  ExpectInStep();
}

TEST_F(FtpActive, IsRefusedItsFileAndListensNoMore) {
  Script script;
  const char* const replies[] = {"300", "425", "550", "x"};
  for (const char* reply : replies) {
    script = script + Script{AnswerPort(),        Expect("RETR x"), Say(reply),          Expect("NOOP"),
                             ConnectDataInVain(), Say("200 own"),   AnswerPort(),        Expect("STOR x"),
                             Say(reply),          Expect("NOOP"),   ConnectDataInVain(), Say("200 own")};
  }
  LogInTo(script + InStep());
  FakeSource source("x");
  for (const char* reply : replies) {
    EXPECT_EQ(m_client.ReceiveFile(source, "x"), reply[0] == 'x' ? kNetNoResponse : kNetRetrFailed);
    EXPECT_EQ(m_client.NoOp(), kNetSuccess);
    EXPECT_EQ(m_client.SendFile(source, "x"), reply[0] == 'x' ? kNetNoResponse : kNetStorFailed);
    EXPECT_EQ(m_client.NoOp(), kNetSuccess);
  }
  ExpectInStep();
}

TEST_F(FtpActive, IsAbortedBetweenPortAndUpload) {
  LogInTo(Script{AnswerPort()} + InStep());
  m_client.aborted = true;
  FakeSource source("x");
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetAborted);
  EXPECT_TRUE(source.modes.empty());
  m_client.aborted = false;
  ExpectInStep();
}

// Only uploads ask before the command.
TEST_F(FtpActive, IsAbortedAfterTheFirstChunkOfADownload) {
  LogInTo(Script{AnswerPort(), Expect("RETR x"), Say("150"), ConnectData(), SendData("first"),
                 ExpectDataLeft(), Say("426")} +
          InStep());
  m_client.aborted = true;
  FakeSource source;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetAborted);
  EXPECT_EQ(source.bytes, "first");
  m_client.aborted = false;
  ExpectInStep();
}

TEST_F(FtpActive, IsAbortedWhileItReceives) {
  LogInTo(Script{AnswerPort(), Expect("RETR x"), Say("150"), ConnectData(),
                 SendDataForEver(std::string(1000, 'x')), Say("426")} +
          InStep());
  m_client.stopAtBytes = 5000;
  FakeSource source;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetAborted);
  EXPECT_EQ(source.openNow, 0);
  ExpectInStep();
}

TEST_F(FtpActive, DoesNotWaitLongForAServerThatDoesNotCome) {
  std::atomic<bool> isGivenUp = false;
  LogInTo(Script{AnswerPort(), Expect("RETR x"), Say("150"), Await(isGivenUp), ConnectDataInVain(),
                 Say("425 cannot")} +
          InStep());
  FakeSource source;
  const Stopwatch watch;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetDataConnectionFailed);
  isGivenUp = true;
  EXPECT_EQ(m_time.vainWaits, std::vector<long long>{5000});
  EXPECT_GE(watch.Elapsed(), 4900U);
  EXPECT_TRUE(source.modes.empty());
  ExpectInStep();
}

TEST_F(FtpActive, ForgetsWhatAServerSaidThatDidNotCome) {
  LogInTo(
      Script{AnswerPort(), Expect("STOR x"), Say("150"), Wait(500), Say("425 cannot"), Say("425 so there")} +
      InStep());
  FakeSource source("x");
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetDataConnectionFailed);
  EXPECT_EQ(m_time.vainWaits, std::vector<long long>{5000});
  ExpectInStep();
  EXPECT_EQ(m_time.vainWaits.size(), 1U) << "nothing more is due";
}

TEST_F(FtpActive, TimesOutBetweenChunks) {
  LogInTo(Script{AnswerPort(), Expect("RETR x"), Say("150"), ConnectData(), SendData("a"), ExpectDataLeft(),
                 Say("426")} +
          InStep());
  FakeSource source;
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetTimedOut);
  EXPECT_EQ(m_time.vainWaits, std::vector<long long>{5000});
  EXPECT_EQ(source.bytes, "a");
  EXPECT_EQ(source.openNow, 0);
  ExpectInStep();
}

TEST_F(FtpActive, ResumesOrStartsAnew) {
  LogInTo(Script{AnswerPort(), Expect("REST 3"), Say("502"), AnswerPort(), Expect("RETR x"), Say("150"),
                 ConnectData(), SendData("new"), CloseData(), Say("226")} +
          InStep());
  FakeSource source("old");
  EXPECT_EQ(m_client.ResumeReceiveFile(source, "x"), kNetRestRefused);
  EXPECT_EQ(source.bytes, "old");
  source.refusedMode = kSourceRead;
  EXPECT_EQ(m_client.ResumeReceiveFile(source, "x"), kNetSuccess);
  EXPECT_EQ(source.bytes, "new");
  EXPECT_EQ(source.modes, (std::vector<int>{kSourceRead, kSourceRead, kSourceWrite}));
  ExpectInStep();
}

TEST_F(FtpActive, LeavesNoSocketOpen) {
  Script script;
  for (int i = 0; i < 4; ++i) {
    script = script + Upload() + Download("y") +
             Script{RefusePort("500"), AnswerPort(), Expect("RETR x"), Say("550")};
  }
  const auto cycle = [&] {
    LogInTo(script + InStep());
    FakeSource source("x");
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(m_client.SendFile(source, "x"), kNetSuccess);
      EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetSuccess);
      EXPECT_EQ(m_client.SendFile(source, "x"), kNetPortFailed);
      EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetRetrFailed);
    }
    ExpectInStep();
    m_server.reset();
  };
  EXPECT_FALSE(LeavesMoreAndMoreOpen(cycle));
}

}  // namespace
