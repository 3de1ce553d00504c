#include <gtest/gtest.h>

#include <thread>

#include "net/testing/clients.h"
#include "net/testing/sockets.h"
#include "net/ws_client.h"
#include "support/temporary_folder.h"

namespace {

class Client : public Watched<CUT_WSClient> {
 public:
  int SendRaw(SocketHandle socket, const char* buffer, int length, int flags) override {
    largestSend = std::max(largestSend, length);
    ++sends;
    EXPECT_EQ(flags, 0);
    return Watched::SendRaw(socket, buffer, std::min(length, sendsAtMost), flags);
  }
  int RecvRaw(SocketHandle socket, char* buffer, int length, int flags) override {
    ++receives;
    return Watched::RecvRaw(socket, buffer, length, flags);
  }
  int WaitForReceive(long seconds, long microseconds) override {
    waits.emplace_back(seconds, microseconds);
    return Watched::WaitForReceive(seconds, microseconds);
  }

  int sendsAtMost = 1 << 20;
  int largestSend = 0;
  int sends = 0;
  int receives = 0;
  std::vector<std::pair<long, long>> waits;
};

class Transfer : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(m_client.Connect(m_listener.Port(), "127.0.0.1", 5), kNetSuccess);
    m_peer = m_listener.Accept();
    ASSERT_TRUE(m_peer.IsOpen());
  }

  TestListener m_listener;
  TestSocket m_peer;
  Client m_client;
};

class FakeStream : public ByteStream {
 public:
  int Read(char* buffer, size_t count) override { return m_source.Read(buffer, count); }
  int Write(const char* buffer, size_t count) override { return m_source.Write(buffer, count); }
  long GetLength() override { return length; }
  std::string& Bytes() { return m_source.bytes; }

  long length = 0;

 private:
  FakeSource m_source;
};

std::string Pattern(size_t size) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 256);
  return bytes;
}

TEST_F(Transfer, ReadsASourceInChunksOf255) {
  const std::string bytes = Pattern(255 * 3 + 10);
  FakeSource source(bytes);
  EXPECT_EQ(m_client.SendFromSource(source), kNetSuccess);
  EXPECT_EQ(m_peer.Hear(bytes.size()), bytes);
  EXPECT_EQ(source.modes, std::vector<int>{kSourceRead});
  EXPECT_EQ(source.openNow, 0);
  EXPECT_EQ(source.largestRead, 255U);
  EXPECT_EQ(m_client.progress, (std::vector<long>{255, 510, 765, 775}));
}

TEST_F(Transfer, SendsManyChunksAtOnce) {
  const std::string bytes = Pattern(1 << 20);
  FakeSource source(bytes);
  std::string heard;
  std::thread peer([&] { heard = m_peer.Hear(bytes.size()); });
  EXPECT_EQ(m_client.SendFromSource(source), kNetSuccess);
  peer.join();
  EXPECT_TRUE(heard == bytes);
  EXPECT_LT(m_client.sends, 1000) << "there are 4,113 chunks";
  EXPECT_LE(m_client.largestSend, 128 * 255);
}

TEST_F(Transfer, ReceivesManyChunksAtOnce) {
  const std::string bytes = Pattern(1 << 20);
  FakeSource source;
  std::thread peer([&] {
    m_peer.Say(bytes);
    m_peer.Close();
  });
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceWrite, 5, 0), kNetSuccess);
  peer.join();
  EXPECT_TRUE(source.bytes == bytes);
  EXPECT_LT(m_client.receives, 2000) << "there are 4,096 chunks";
}

TEST_F(Transfer, HasSentWhatItReportedBeforeAnAbort) {
  const std::string bytes = Pattern(1 << 20);
  FakeSource source(bytes);
  m_client.stopAtBytes = 100000;
  EXPECT_EQ(m_client.SendFromSource(source), kNetAborted);
  m_client.CloseConnection();
  const auto reported = static_cast<size_t>(m_client.progress.back());
  EXPECT_LT(reported, 100255U);
  EXPECT_TRUE(m_peer.HearToEnd() == bytes.substr(0, reported));
}

TEST_F(Transfer, LeavesTheRestInTheSocket) {
  const std::string bytes = Pattern(10000);
  FakeSource source;
  m_peer.Say(bytes);
  m_peer.CloseForSending();
  m_client.stopAtBytes = 1000;
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceWrite, 5, 0), kNetAborted);
  EXPECT_EQ(source.bytes, bytes.substr(0, 1024));
  m_client.stopAtBytes = std::numeric_limits<long>::max();
  source.failingFrom = 300;
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceWrite, 5, 0), kNetSourceNotWritten);
  EXPECT_EQ(source.bytes, bytes.substr(1024, 300));
  std::string rest(bytes.size(), '\0');
  rest.resize(static_cast<size_t>(m_client.ReceiveAll(rest.data(), static_cast<int>(rest.size()), 5)));
  EXPECT_TRUE(rest == bytes.substr(1024 + 512));
}

TEST_F(Transfer, LosesNothingWhenTheConnectionTakesPartOfAChunk) {
  const std::string bytes = Pattern(1000);
  FakeSource source(bytes);
  m_client.sendsAtMost = 100;
  EXPECT_EQ(m_client.SendFromSource(source), kNetSuccess);
  EXPECT_EQ(m_peer.Hear(bytes.size()), bytes);
  EXPECT_EQ(m_client.progress.back(), 1000);
}

TEST_F(Transfer, NeedsASocketBeforeTheSource) {
  Client closed;
  FakeSource source("x");
  FakeStream stream;
  EXPECT_EQ(closed.SendFromSource(source), kNetSocketNotOpen);
  EXPECT_EQ(closed.ReceiveToSource(source, kSourceWrite, 1, 0), kNetSocketNotOpen);
  EXPECT_EQ(closed.ReceiveToSource(source, 0, 1, 0), kNetSocketNotOpen);
  EXPECT_EQ(closed.SendFromStream(stream), kNetSocketNotOpen);
  EXPECT_EQ(closed.ReceiveToStream(stream, 1, 0), kNetSocketNotOpen);
  EXPECT_TRUE(source.modes.empty());
  EXPECT_EQ(closed.codes.back(), kNetSocketNotOpen);
}

TEST_F(Transfer, TellsThatASourceCannotBeOpened) {
  FakeSource source("x");
  for (int mode : {kSourceRead, kSourceWrite, kSourceAppend}) {
    source.refusedMode = mode;
    EXPECT_EQ(
        mode == kSourceRead ? m_client.SendFromSource(source) : m_client.ReceiveToSource(source, mode, 1, 0),
        kNetSourceNotOpened);
  }
  EXPECT_EQ(source.openNow, 0);
}

TEST_F(Transfer, RefusesAModeBeforeItOpensTheSource) {
  FakeSource source;
  for (int mode : {0, 3, -1}) EXPECT_EQ(m_client.ReceiveToSource(source, mode, 1, 0), kNetBadMode);
  EXPECT_TRUE(source.modes.empty());
}

TEST_F(Transfer, TakesAReadThatFailsForTheEnd) {
  FakeSource source(Pattern(600));
  source.failingFrom = 255;
  EXPECT_EQ(m_client.SendFromSource(source), kNetSuccess);
  EXPECT_EQ(m_client.progress, std::vector<long>{255});
  EXPECT_EQ(source.openNow, 0);
}

TEST_F(Transfer, EndsWhenNothingCanBeSent) {
  FakeSource source(Pattern(600));
  m_client.sendsAtMost = 0;
  EXPECT_EQ(m_client.SendFromSource(source), kNetSendFailed);
  EXPECT_EQ(source.openNow, 0);
  EXPECT_TRUE(m_client.progress.empty());
}

TEST_F(Transfer, EndsWhenThePeerResetsTheConnection) {
  FakeSource source(std::string(100 << 20, 'x'));
  std::thread peer([&] {
    m_peer.Hear(100000);
    m_peer.Reset();
  });
  EXPECT_EQ(m_client.SendFromSource(source), kNetSendFailed);
  peer.join();
  EXPECT_EQ(source.openNow, 0);
}

TEST_F(Transfer, EndsWithTheSendTimeOutWhenThePeerTakesNothing) {
  ASSERT_EQ(m_client.SetSendTimeout(1000), kNetSuccess);
  FakeSource source(std::string(100 << 20, 'x'));
  const std::uint64_t start = SystemTicks();
  EXPECT_EQ(m_client.SendFromSource(source), kNetSendFailed);
  EXPECT_LT(SystemTicks() - start, 25000U) << "without a time-out of its own it is 30 s";
  EXPECT_EQ(source.openNow, 0);
}

TEST_F(Transfer, IsAbortedByItsHooks) {
  FakeSource source(Pattern(1000));
  m_client.stopAtBytes = 510;
  EXPECT_EQ(m_client.SendFromSource(source), kNetAborted);
  EXPECT_EQ(m_client.progress, (std::vector<long>{255, 510}));
  EXPECT_EQ(source.openNow, 0);
  EXPECT_EQ(m_client.codes.back(), kNetAborted);

  m_client.progress.clear();
  m_client.stopAtBytes = 1 << 20;
  m_client.aborted = true;
  EXPECT_EQ(m_client.SendFromSource(source), kNetAborted);
  EXPECT_EQ(m_client.progress, std::vector<long>{255});
  m_peer.Say(Pattern(1000));
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceWrite, 5, 0), kNetAborted);
  EXPECT_EQ(source.openNow, 0);
}

TEST_F(Transfer, SendsAnOpenStreamFromWhereItStands) {
  FakeStream stream;
  stream.Bytes() = "0123456789";
  char skipped[4];
  stream.Read(skipped, sizeof skipped);
  EXPECT_EQ(m_client.SendFromStream(stream), kNetSuccess);
  EXPECT_EQ(m_peer.Hear(6), "456789");
}

TEST_F(Transfer, ReceivesUntilThePeerCloses) {
  const std::string bytes = Pattern(256 * 3 + 10);
  FakeSource source("before");
  m_peer.Say(bytes);
  m_peer.Close();
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceWrite, 5, 0), kNetSuccess);
  EXPECT_EQ(source.bytes, bytes);
  EXPECT_EQ(source.openNow, 0);
  EXPECT_EQ(m_client.progress, (std::vector<long>{256, 512, 768, 778}));
  EXPECT_GE(m_client.waits.size(), 2U) << "for the bytes, and for the end";
  EXPECT_EQ(m_client.waits, std::vector(m_client.waits.size(), std::make_pair(5L, 0L)));
}

TEST_F(Transfer, AppendsAndDoesNotWaitWhenToldSo) {
  FakeSource source("before ");
  m_peer.Say("after");
  m_peer.Close();
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceAppend, 0, 0), kNetSuccess);
  EXPECT_EQ(source.bytes, "before after");
  EXPECT_TRUE(m_client.waits.empty());
}

TEST_F(Transfer, ReceivesNoMoreThanItsMaximum) {
  FakeSource source;
  m_peer.Say(Pattern(400));
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceWrite, 5, 300), kNetSuccess);
  EXPECT_EQ(source.bytes, Pattern(300));
  char rest[200];
  EXPECT_EQ(m_client.ReceiveAll(rest, 100, 5), 100) << "the rest is still there";
}

TEST_F(Transfer, WaitsForNothingBeyondItsMaximum) {
  FakeSource source;
  m_peer.Say(Pattern(512));
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceWrite, 20, 512), kNetSuccess);
  EXPECT_EQ(source.bytes, Pattern(512));
}

TEST_F(Transfer, TimesOutBetweenChunks) {
  FakeSource source;
  m_peer.Say("x");
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceWrite, 1, 0), kNetTimedOut);
  EXPECT_EQ(source.bytes, "x");
  EXPECT_EQ(source.openNow, 0);
}

TEST_F(Transfer, FailsWithItsSource) {
  FakeSource source;
  source.failingFrom = 300;
  m_peer.Say(Pattern(1000));
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceWrite, 5, 0), kNetSourceNotWritten);
  EXPECT_EQ(source.openNow, 0);
}

// Without a wait before: Wine's takes the error from the socket, and the receive sees an end.
TEST_F(Transfer, FailsWithItsSocket) {
  FakeSource source;
  std::thread peer([&] {
    m_peer.Say("x");
    SleepFor(200);
    m_peer.Reset();
  });
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceWrite, 0, 0), kNetReceiveFailed);
  peer.join();
  EXPECT_EQ(source.bytes, "x");
  EXPECT_EQ(source.openNow, 0);
}

TEST_F(Transfer, EndsWithTheReceiveTimeOutWhenItDoesNotWait) {
  ASSERT_EQ(m_client.SetReceiveTimeout(500), kNetSuccess);
  FakeSource source;
  const std::uint64_t start = SystemTicks();
  EXPECT_EQ(m_client.ReceiveToSource(source, kSourceWrite, 0, 0), kNetReceiveFailed);
  EXPECT_LT(SystemTicks() - start, 25000U) << "without a time-out of its own it is 30 s";
}

TEST_F(Transfer, ReceivesToAStreamAsMuchAsItTakes) {
  FakeStream stream;
  stream.length = 5;
  m_peer.Say("0123456789abcdef");
  EXPECT_EQ(m_client.ReceiveToStream(stream, 5, 0), kNetSuccess);
  EXPECT_EQ(stream.Bytes(), "01234");
  EXPECT_EQ(m_client.ReceiveToStream(stream, 5, 7), kNetSuccess);
  EXPECT_EQ(stream.Bytes(), "0123456789ab");
  stream.length = 0;
  m_peer.Close();
  EXPECT_EQ(m_client.ReceiveToStream(stream, 5, -1), kNetSuccess);
  EXPECT_EQ(stream.Bytes(), "0123456789abcdef");
}

TEST_F(Transfer, MovesFilesByName) {
  const TemporaryFolder folder;
  const std::string bytes = Pattern(100000);
  WriteFile(folder.Path("up"), bytes);
  EXPECT_EQ(m_client.SendFileByName(folder.Path("up").c_str()), kNetSuccess);
  EXPECT_EQ(m_peer.Hear(bytes.size()), bytes);
  WriteFile(folder.Path("down"), "before ");
  m_peer.Say("after");
  m_peer.Close();
  EXPECT_EQ(m_client.ReceiveFileByName(folder.Path("down").c_str(), kSourceAppend, 5), kNetSuccess);
  EXPECT_EQ(ReadFile(folder.Path("down")), "before after");
  EXPECT_EQ(m_client.SendFileByName(folder.Path("none").c_str()), kNetSourceNotOpened);
  EXPECT_EQ(m_client.SendFileByName(nullptr), kNetSourceNotOpened);
  EXPECT_EQ(m_client.ReceiveFileByName(folder.Path("none/x").c_str(), kSourceWrite, 5), kNetSourceNotOpened);
}

}  // namespace
