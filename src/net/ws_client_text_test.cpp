#include <gtest/gtest.h>

#include <thread>

#include "net/testing/clients.h"
#include "net/testing/sockets.h"
#include "net/ws_client.h"

namespace {

using Client = Watched<CUT_WSClient>;

class Text : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(m_client.Connect(m_listener.Port(), "127.0.0.1", 5), kNetSuccess);
    m_peer = m_listener.Accept();
    ASSERT_TRUE(m_peer.IsOpen());
  }
  std::string Line(size_t size, long seconds = 5) {
    std::vector<char> buffer(size + 8, '#');
    const int placed = m_client.ReceiveLine(buffer.data(), size, seconds);
    if (size > 0) {
      EXPECT_EQ(buffer[static_cast<size_t>(placed)], '\0');
    }
    for (size_t i = size; i < buffer.size(); ++i) EXPECT_EQ(buffer[i], '#') << "beyond the buffer";
    return std::string(buffer.data(), static_cast<size_t>(placed));
  }

  TestListener m_listener;
  TestSocket m_peer;
  Client m_client;
};

TEST_F(Text, IsSentByItsLength) {
  EXPECT_EQ(m_client.Send("hello", 2), 2);
  EXPECT_EQ(m_client.Send("llo", 0), 3);
  EXPECT_EQ(m_client.Send("!", -1), 1);
  EXPECT_EQ(m_client.SendAll(" world"), 6);
  EXPECT_EQ(m_client.Send(nullptr, 5), 0);
  EXPECT_EQ(m_client.SendAll(nullptr), 0);
  EXPECT_EQ(m_peer.Hear(12), "hello! world");
}

TEST_F(Text, IsSentWholeWhateverItsSize) {
  const std::string all(8 << 20, 'x');
  std::string heard;
  std::thread peer([&] { heard = m_peer.Hear(all.size()); });
  EXPECT_EQ(m_client.SendAll(all.data(), static_cast<int>(all.size())), static_cast<int>(all.size()));
  peer.join();
  EXPECT_TRUE(heard == all);
}

TEST_F(Text, IsSentInLines) {
  EXPECT_EQ(m_client.SendInLines("0123456789", -1, 4), 10);
  EXPECT_EQ(m_client.SendInLines("abcdef", 4, 4), 4);
  EXPECT_EQ(m_client.SendInLines("end", -1, 256), 3);
  EXPECT_EQ(m_peer.Hear(16 + 6 + 5), "0123\r\n4567\r\n89\r\nabcd\r\nend\r\n");
}

TEST_F(Text, IsNotSentInLinesOfNothing) {
  EXPECT_EQ(m_client.SendInLines("", -1, 4), 0);
  EXPECT_EQ(m_client.SendInLines("abc", 0, 4), 0);
  EXPECT_EQ(m_client.SendInLines("abc", -1, 0), 0);
  EXPECT_EQ(m_client.SendInLines("abc", -1, -3), 0);
  EXPECT_EQ(m_client.SendInLines(nullptr, 3, 4), 0);
  m_client.CloseConnection();
  EXPECT_EQ(m_peer.HearToEnd(), "");
}

TEST_F(Text, IsSentInLinesUntilAbortedOrBroken) {
  m_client.abortAfterQuestions = 2;
  EXPECT_EQ(m_client.SendInLines("0123456789", -1, 4), 8);
  EXPECT_EQ(m_peer.Hear(12), "0123\r\n4567\r\n");
  m_client.CloseConnection();
  m_client.abortAfterQuestions = 1000;
  EXPECT_EQ(m_client.SendInLines("0123456789", -1, 4), 0);
}

TEST_F(Text, IsReceivedAtOnceOrInTime) {
  char buffer[8] = {};
  m_peer.Say("abc");
  EXPECT_EQ(m_client.Receive(buffer, sizeof buffer, 5), 3);
  EXPECT_EQ(m_client.Receive(buffer, sizeof buffer, 1), 0) << "time-out";
  m_peer.Close();
  EXPECT_EQ(m_client.Receive(buffer, sizeof buffer, 5), 0) << "end";
  m_client.CloseConnection();
  EXPECT_EQ(m_client.Receive(buffer, sizeof buffer, 0), -1);
}

TEST_F(Text, IsCollectedUntilTheBufferIsFull) {
  char buffer[11] = {};
  std::thread peer([&] {
    for (const char* piece : {"0", "123", "456789"}) {
      m_peer.Say(piece);
      SleepFor(50);
    }
  });
  EXPECT_EQ(m_client.ReceiveAll(buffer, 10, 5), 10);
  peer.join();
  EXPECT_STREQ(buffer, "0123456789");
  m_peer.Say("xy");
  EXPECT_EQ(m_client.ReceiveAll(buffer, 10, 1), 2) << "time-out";
  m_peer.Say("z");
  m_peer.Close();
  EXPECT_EQ(m_client.ReceiveAll(buffer, 10, 0), 1) << "end";
}

TEST_F(Text, ComesLineByLine) {
  m_peer.Say("one\r\ntwo\n\r\n\nrest");
  EXPECT_EQ(Line(100), "one\r\n");
  char next[4] = {};
  EXPECT_EQ(m_client.Receive(next, 3, 5), 3);
  EXPECT_STREQ(next, "two") << "not a byte of the next line was taken";
  EXPECT_EQ(Line(100), "\n");
  EXPECT_EQ(Line(100), "\r\n");
  EXPECT_EQ(Line(100), "\n");
  m_peer.Close();
  EXPECT_EQ(Line(100), "rest");
  EXPECT_EQ(Line(100), "");
}

TEST_F(Text, ComesInPiecesWhenTheLineIsLong) {
  m_peer.Say("0123456789\r\nnext\r\n");
  EXPECT_EQ(Line(5), "0123");
  EXPECT_EQ(Line(5), "4567");
  EXPECT_EQ(Line(5), "89\r\n");
  EXPECT_EQ(Line(6), "next\r");
  EXPECT_EQ(Line(6), "\n");
}

TEST_F(Text, PlacesNothingWhereThereIsNoRoom) {
  m_peer.Say("line\r\n");
  EXPECT_EQ(Line(1), "");
  EXPECT_EQ(Line(0), "");
  EXPECT_EQ(m_client.ReceiveLine(nullptr, 100, 5), 0);
  EXPECT_EQ(Line(100), "line\r\n");
}

TEST_F(Text, WaitsForTheRestOfALine) {
  std::thread peer([&] {
    m_peer.Say("be");
    SleepFor(200);
    m_peer.Say("gun\r");
    SleepFor(200);
    m_peer.Say("\n");
  });
  EXPECT_EQ(Line(100), "begun\r\n");
  peer.join();
  m_peer.Say("half");
  EXPECT_EQ(Line(100, 1), "half") << "time-out";
}

TEST_F(Text, EndsWithTheReceiveTimeOutWhenItDoesNotWait) {
  ASSERT_EQ(m_client.SetReceiveTimeout(500), kNetSuccess);
  const std::uint64_t start = SystemTicks();
  EXPECT_EQ(Line(100, 0), "");
  EXPECT_LT(SystemTicks() - start, 25000U) << "without a time-out of its own it is 30 s";
}

TEST_F(Text, IsNotReceivedOnceAborted) {
  m_peer.Say("line\r\n");
  m_client.aborted = true;
  EXPECT_EQ(Line(100), "");
  m_client.aborted = false;
  EXPECT_EQ(Line(100), "line\r\n");
}

TEST_F(Text, IsDrainedWithoutWaiting) {
  EXPECT_EQ(m_client.DrainInput(), kNetSuccess);
  m_peer.Say(std::string(3000, 'x'));
  ASSERT_EQ(m_client.WaitForReceive(5, 0), 0);
  SleepFor(100);
  EXPECT_EQ(m_client.DrainInput(), kNetSuccess);
  m_peer.Say("next\r\n");
  EXPECT_EQ(Line(100), "next\r\n");
  m_peer.Close();
  EXPECT_EQ(m_client.DrainInput(), kNetSuccess);
  m_client.CloseConnection();
  EXPECT_EQ(m_client.DrainInput(), kNetSuccess);
}

TEST_F(Text, IsNotDrainedForEver) {
  std::thread peer([&] {
    while (m_peer.Say(std::string(100000, 'x'))) {
    }
  });
  const std::uint64_t start = SystemTicks();
  EXPECT_EQ(m_client.DrainInput(), kNetSuccess);
  EXPECT_LT(SystemTicks() - start, 60000U);
  m_client.CloseConnection();
  peer.join();
}

}  // namespace
