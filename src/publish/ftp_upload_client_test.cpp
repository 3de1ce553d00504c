#include "publish/ftp_upload_client.h"

#include <gtest/gtest.h>

#include <utility>

#include "net/error_codes.h"
#include "net/testing/hurried_time.h"
#include "net/testing/scripted_server.h"
#include "net/timeout_clock.h"
#include "publish/testing/fake_publish_host.h"

namespace {

class UploadClient : public testing::Test {
 protected:
  void LogInTo(const ScriptedServer::Script& script) {
    m_server = std::make_unique<ScriptedServer>(
        ScriptedServer::Script{Say("220"), Expect("USER ann"), Say("230"), Expect("TYPE A"), Say("200"),
                               Expect("MODE S"), Say("200"), Expect("STRU F"), Say("200")} +
        script);
    m_client.SetControlPort(m_server->Port());
    ASSERT_EQ(m_client.FTPConnect("127.0.0.1", "ann", "secret"), kNetSuccess);
  }

  UploadClient() { m_time.RunAt(2); }
  std::uint64_t Elapsed() const { return TimeoutClock() - m_nStart; }

  HurriedTime m_time;
  std::uint64_t m_nStart = 0;
  FakePublishHost m_host;
  CFtpUploadClient m_client{m_host};
  std::unique_ptr<ScriptedServer> m_server;
};

TEST_F(UploadClient, GivesASilentServerSomeTimeAfterAnAbort) {
  LogInTo({Expect("CWD a"), ExpectEnd()});
  m_host.aborted = true;
  m_nStart = TimeoutClock();
  EXPECT_EQ(m_client.ChDir("a"), kNetNoResponse);
  EXPECT_TRUE(m_client.HasGivenUp());
  EXPECT_GE(Elapsed(), 3900U);
  EXPECT_LT(Elapsed(), 25000U) << "without an abort it is 30 s";
  m_client.CloseConnection();
  EXPECT_EQ(m_server->Finish(), "");
}

TEST_F(UploadClient, GivesASilentServerLessTimeWhenItLeaves) {
  LogInTo({Expect("CWD a"), ExpectEnd()});
  m_time.RunAt(1);
  m_host.leaving = true;
  m_nStart = TimeoutClock();
  EXPECT_EQ(m_client.ChDir("a"), kNetNoResponse);
  EXPECT_TRUE(m_client.HasGivenUp());
  EXPECT_GE(Elapsed(), 900U);
  EXPECT_LT(Elapsed(), 3900U) << "an abort gives it 4 s";
  m_client.CloseConnection();
  EXPECT_EQ(m_server->Finish(), "");
}

// As behind address translation.
TEST_F(UploadClient, ListsAServerThatNamesAnAddressOfItsOwnNetwork) {
  m_client.SetPassive(true);
  LogInTo({AnswerPasv("127.0.0.1", "10.255.255.1"), Expect("LIST"), AcceptData(), Say("150"), CloseData(),
           Say("226"), Expect("Quit"), ExpectEnd()});
  EXPECT_EQ(m_client.List(), kNetSuccess);
  m_client.FTPClose();
  EXPECT_EQ(m_server->Finish(), "");
}

// As on a slow line, where the way back from deep folders takes a second for each.
TEST_F(UploadClient, WaitsAfterOneAbortForEveryAnswerAnew) {
  ScriptedServer::Script script;
  constexpr int kFolders = 6;
  for (int i = 0; i < kFolders; ++i)
    script = script + ScriptedServer::Script{Expect("CDUP"), Wait(500), Say("250")};
  LogInTo(script + ScriptedServer::Script{Expect("Quit"), ExpectEnd()});
  m_host.aborted = true;
  for (int i = 0; i < kFolders; ++i) EXPECT_EQ(m_client.CdUp(), kNetSuccess) << i;
  EXPECT_FALSE(m_client.HasGivenUp());
  m_client.FTPClose();
  EXPECT_EQ(m_server->Finish(), "");
}

TEST_F(UploadClient, GivesEveryAbortItsTime) {
  LogInTo({Expect("CWD a"), Wait(300), Say("250"), Expect("NOOP"), Say("200"), Expect("CWD b"), Wait(300),
           Say("250"), Expect("Quit"), ExpectEnd()});
  m_host.aborted = true;
  EXPECT_EQ(m_client.ChDir("a"), kNetSuccess);
  m_host.aborted = false;
  EXPECT_EQ(m_client.NoOp(), kNetSuccess);
  SleepFor(1500);
  m_host.aborted = true;
  EXPECT_EQ(m_client.ChDir("b"), kNetSuccess);
  EXPECT_FALSE(m_client.HasGivenUp());
  m_client.FTPClose();
  EXPECT_EQ(m_server->Finish(), "");
}

// The question whether to stop, answered with No after longer than a reply is waited for.
class UploadClientWithAQuestion : public UploadClient {
 protected:
  void AskOnceFor(int milliseconds) {
    m_host.onPump = [this, milliseconds] {
      if (std::exchange(m_bAsked, true)) return;
      const TimeoutPause pause;
      SleepFor(milliseconds);
    };
  }

  bool m_bAsked = false;
};

TEST_F(UploadClientWithAQuestion, GoesOnWaitingAsLongAsItWouldHave) {
  LogInTo({Expect("CWD a"), Wait(2500), Say("250"), Expect("Quit"), ExpectEnd()});
  m_client.SetDataTimeouts(3000, 3000);
  AskOnceFor(2000);
  EXPECT_EQ(m_client.ChDir("a"), kNetSuccess);
  m_client.FTPClose();
  EXPECT_EQ(m_server->Finish(), "");
}

TEST_F(UploadClientWithAQuestion, TakesTheAnswerThatHasComeMeanwhile) {
  LogInTo({Expect("CWD a"), Wait(500), Say("250"), Expect("Quit"), ExpectEnd()});
  m_client.SetDataTimeouts(1000, 1000);
  AskOnceFor(2500);
  EXPECT_EQ(m_client.ChDir("a"), kNetSuccess);
  m_client.FTPClose();
  EXPECT_EQ(m_server->Finish(), "");
}

}  // namespace
