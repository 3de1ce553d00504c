// What the listener of a client's waits gets to see, and what it can stop.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "net/testing/clients.h"
#include "net/testing/ftp_fixture.h"
#include "net/testing/sockets.h"

namespace {

class CountingListener : public WaitListener {
 public:
  bool OnWait() override {
    SleepFor(10);
    return ++turns < patience;
  }

  std::atomic<int> turns = 0;
  int patience = std::numeric_limits<int>::max();
};

constexpr std::uint64_t kPromptly = 15000;  // ms; the client itself would wait for 30 seconds

class WaitsOfAClient : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(m_client.Connect(m_listener.Port(), "127.0.0.1", 5), kNetSuccess);
    m_peer = m_listener.Accept();
    ASSERT_TRUE(m_peer.IsOpen());
    m_client.SetWaitListener(&m_turns);
  }
  void ExpectStopped() {
    EXPECT_EQ(m_turns.turns, m_turns.patience);
    EXPECT_LT(m_watch.Elapsed(), kPromptly);
  }

  TestListener m_listener;
  TestSocket m_peer;
  CountingListener m_turns;
  Watched<CUT_WSClient> m_client;
  Stopwatch m_watch;
  char m_buffer[64] = "";
};

TEST_F(WaitsOfAClient, GoOnForAsLongAsWithoutIt) {
  EXPECT_EQ(m_client.WaitForReceive(0, 300000), 1);
  EXPECT_GE(m_watch.Elapsed(), 290U);
  EXPECT_LT(m_watch.Elapsed(), kPromptly);
  EXPECT_GE(m_turns.turns, 1);
  EXPECT_LE(m_turns.turns, 15) << "each is followed by twenty milliseconds";
}

TEST_F(WaitsOfAClient, EndWithWhatTheyWaitFor) {
  ASSERT_TRUE(m_peer.Say("hello\n"));
  EXPECT_EQ(m_client.ReceiveLine(m_buffer, sizeof m_buffer, 30), 6);
  EXPECT_STREQ(m_buffer, "hello\n");
  EXPECT_LT(m_watch.Elapsed(), kPromptly);
}

TEST_F(WaitsOfAClient, EndAtOnceWithoutASocket) {
  m_client.CloseConnection();
  EXPECT_EQ(m_client.WaitForReceive(30, 0), 1);
  EXPECT_EQ(m_client.WaitWritable(30, 0), 1);
  EXPECT_EQ(m_client.WaitForAccept(30), 1);
  EXPECT_EQ(m_client.ReceiveLine(m_buffer, sizeof m_buffer, 30), 0);
  EXPECT_LT(m_watch.Elapsed(), kPromptly);
  EXPECT_EQ(m_turns.turns, 0);
}

TEST_F(WaitsOfAClient, EndWithARefusal) {
  m_client.CloseConnection();
  const RefusingPort nobody;
  EXPECT_EQ(m_client.Connect(nobody.Port(), "127.0.0.1", 60), kNetConnectTimedOut);
  EXPECT_LT(m_watch.Elapsed(), 30000U);
}

TEST_F(WaitsOfAClient, AreStoppedForALine) {
  m_turns.patience = 5;
  EXPECT_EQ(m_client.ReceiveLine(m_buffer, sizeof m_buffer, 30), 0);
  ExpectStopped();
}

TEST_F(WaitsOfAClient, AreStoppedWhereAReceiveWouldBlock) {
  m_turns.patience = 5;
  EXPECT_EQ(m_client.Receive(m_buffer, sizeof m_buffer, 0), -1);
  ExpectStopped();
  m_turns.turns = 0;
  EXPECT_EQ(m_client.ReceiveLine(m_buffer, sizeof m_buffer, 0), 0);
  ExpectStopped();
}

TEST_F(WaitsOfAClient, AreStoppedWhereASendWouldBlock) {
  m_turns.patience = 5;
  ASSERT_EQ(m_client.SetBlockingMode(1), kNetSuccess);
  const std::string much(64 << 20, 'x');  // more than the system buffers for a peer that does not receive
  EXPECT_LT(m_client.SendAll(much.data(), static_cast<int>(much.size())), static_cast<int>(much.size()));
  EXPECT_EQ(m_turns.turns, m_turns.patience);
}

TEST_F(WaitsOfAClient, LoseNothingOfWhatIsSentSlowly) {
  ASSERT_EQ(m_client.SetBlockingMode(1), kNetSuccess);
  const std::string much(16 << 20, 'x');
  std::string heard;
  std::thread reader([&] {
    SleepFor(300);
    heard = m_peer.Hear(much.size());
  });
  EXPECT_EQ(m_client.SendAll(much.data(), static_cast<int>(much.size())), static_cast<int>(much.size()));
  reader.join();
  EXPECT_TRUE(heard == much);
  EXPECT_GT(m_turns.turns, 0);
}

using FtpWaits = FtpTest;

TEST_F(FtpWaits, AreStoppedForAReply) {
  CountingListener turns;
  LogInTo({Expect("CWD a"), ExpectEnd()});
  m_client.SetWaitListener(&turns);
  turns.patience = 5;
  const Stopwatch watch;
  EXPECT_EQ(m_client.ChDir("a"), kNetNoResponse);
  EXPECT_LT(watch.Elapsed(), kPromptly);
  m_client.CloseConnection();
  EXPECT_EQ(m_server->Finish(), "");
}

TEST_F(FtpWaits, AreStoppedForAListing) {
  CountingListener turns;
  LogInTo({AnswerPasv(), Expect("LIST"), AcceptData(), Say("150 here"), ExpectDataLeft(), ExpectEnd()});
  m_client.SetWaitListener(&turns);
  m_client.SetPassive(true);
  turns.patience = 5;
  const Stopwatch watch;
  EXPECT_EQ(m_client.List(), kNetNoResponse);
  EXPECT_EQ(m_client.GetDirEntryCount(), 0);
  EXPECT_LT(watch.Elapsed(), kPromptly);
  m_client.CloseConnection();
  EXPECT_EQ(m_server->Finish(), "");
}

TEST_F(FtpWaits, HaveTurnsWhileAServerDoesNotReceive) {
  CountingListener turns;
  const auto waitForTurns = [&turns](ScriptedServer::Stage&) {
    for (int i = 0; i < 12000 && turns.turns < 5; ++i) SleepFor(10);
    return turns.turns >= 5;
  };
  LogInTo({AnswerPasv(), Expect("STOR a"), AcceptData(), Say("150 go on"), waitForTurns, HearData(),
           CloseData(), Say("226 done"), Expect("Quit"), ExpectEnd()});
  m_client.SetWaitListener(&turns);
  m_client.SetPassive(true);
  FakeSource source(std::string(32 << 20, 'x'));
  EXPECT_EQ(m_client.SendFile(source, "a"), kNetSuccess);
  EXPECT_GE(turns.turns, 5);
  ExpectPlayed();
  EXPECT_EQ(m_server->HeardOnData().size(), source.bytes.size());
}

}  // namespace
