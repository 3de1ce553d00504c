#include "net/chunk_receiver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "net/error_codes.h"

namespace {

std::string Pattern(size_t size) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 256);
  return bytes;
}

// What has arrived; nothing more comes until it is waited for.
class Peer : public ReceiveSocket {
 public:
  explicit Peer(std::string bytes) : waiting(std::move(bytes)) {}

  bool WaitForData(long seconds) override {
    waits.push_back(seconds);
    if (waiting.empty() && !packets.empty()) {
      waiting = packets.front();
      packets.erase(packets.begin());
    }
    return !waiting.empty() || isClosed;
  }
  int Peek(char* buffer, int count) override {
    largestPeek = std::max(largestPeek, count);
    return Copy(buffer, count);
  }
  int Take(char* buffer, int count) override {
    if (failsToTake) return -1;
    const int taken = Copy(buffer, std::min(count, takesAtMost));
    if (taken > 0) waiting.erase(0, static_cast<size_t>(taken));
    return taken;
  }
  bool GoesOn(long long bytes) override {
    reported.push_back(bytes);
    return bytes < stopsAt;
  }

  std::string waiting;
  std::vector<std::string> packets;
  bool isClosed = false;
  bool failsToTake = false;
  int takesAtMost = std::numeric_limits<int>::max();
  long long stopsAt = std::numeric_limits<long long>::max();
  std::vector<long> waits;
  std::vector<long long> reported;
  int largestPeek = 0;

 private:
  int Copy(char* buffer, int count) const {
    if (waiting.empty()) return isClosed ? 0 : -1;
    return static_cast<int>(waiting.copy(buffer, static_cast<size_t>(count)));
  }
};

class Sink : public ByteStream {
 public:
  int Read(char*, size_t) override { return -1; }
  int Write(const char* buffer, size_t count) override {
    sizes.push_back(count);
    count = std::min(count, holds - bytes.size());
    bytes.append(buffer, count);
    return static_cast<int>(count);
  }
  long GetLength() override { return 0; }

  std::string bytes;
  std::vector<size_t> sizes;
  size_t holds = std::numeric_limits<size_t>::max();
};

TEST(ReceivedChunks, AreWrittenAndReportedOneByOne) {
  Peer peer(Pattern(3 * 256 + 10));
  peer.isClosed = true;
  Sink sink;
  EXPECT_EQ(ReceiveChunks(peer, sink, 0, 0), kNetSuccess);
  EXPECT_EQ(sink.bytes, Pattern(778));
  EXPECT_EQ(sink.sizes, (std::vector<size_t>{256, 256, 256, 10}));
  EXPECT_EQ(peer.reported, (std::vector<long long>{256, 512, 768, 778}));
  EXPECT_TRUE(peer.waits.empty());
}

TEST(ReceivedChunks, ArriveAsTheyWereHoweverTheyCome) {
  for (const int takesAtMost : {100, 255, 1000, 1 << 20}) {
    const std::string bytes = Pattern(2 * kReceiveBlock + 1000);
    Peer peer(bytes.substr(0, 100));
    peer.packets = {bytes.substr(100, 1), bytes.substr(101, 70000), bytes.substr(70101)};
    peer.isClosed = true;
    peer.takesAtMost = takesAtMost;
    Sink sink;
    EXPECT_EQ(ReceiveChunks(peer, sink, 5, 0), kNetSuccess);
    EXPECT_TRUE(sink.bytes == bytes) << takesAtMost;
    EXPECT_EQ(*std::max_element(sink.sizes.begin(), sink.sizes.end()), 256U);
  }
}

TEST(ReceivedChunks, ComeInTogether) {
  Peer peer(Pattern(2 * kReceiveBlock));
  peer.isClosed = true;
  Sink sink;
  EXPECT_EQ(ReceiveChunks(peer, sink, 5, 0), kNetSuccess);
  EXPECT_EQ(peer.largestPeek, kReceiveBlock);
  EXPECT_EQ(peer.waits, std::vector<long>(3, 5)) << "for each block, and for the end";
}

TEST(ReceivedChunks, AreWaitedForAsLongAsNothingComes) {
  for (const long seconds : {1L, 7L}) {
    Peer peer(Pattern(300));
    Sink sink;
    EXPECT_EQ(ReceiveChunks(peer, sink, seconds, 0), kNetTimedOut);
    EXPECT_EQ(sink.bytes, Pattern(300));
    EXPECT_EQ(peer.waits, std::vector<long>(2, seconds));
  }
}

TEST(ReceivedChunks, EndWithTheSocket) {
  Peer peer(Pattern(300));
  Sink sink;
  EXPECT_EQ(ReceiveChunks(peer, sink, 0, 0), kNetReceiveFailed);
  EXPECT_EQ(sink.bytes, Pattern(300));
  Peer broken(Pattern(300));
  broken.failsToTake = true;
  EXPECT_EQ(ReceiveChunks(broken, sink, 0, 0), kNetReceiveFailed);
}

TEST(ReceivedChunks, AreNoMoreThanTheMaximum) {
  for (const long maximum : {1L, 255L, 256L, 512L, 700L, 70000L}) {
    const std::string bytes = Pattern(100000);
    Peer peer(bytes);
    Sink sink;
    EXPECT_EQ(ReceiveChunks(peer, sink, 5, maximum), kNetSuccess);
    const auto received = static_cast<size_t>(maximum);
    EXPECT_TRUE(sink.bytes == bytes.substr(0, received)) << maximum;
    EXPECT_TRUE(peer.waiting == bytes.substr(received)) << "the rest is still there";
  }
}

TEST(ReceivedChunks, AreNotWaitedForBeyondTheMaximum) {
  Peer peer(Pattern(512));
  Sink sink;
  EXPECT_EQ(ReceiveChunks(peer, sink, 5, 512), kNetSuccess);
  EXPECT_EQ(peer.waits, std::vector<long>(1, 5));
}

TEST(ReceivedChunks, LeaveTheRestWhereItIsAfterAnAbort) {
  const std::string bytes = Pattern(10000);
  Peer peer(bytes);
  peer.stopsAt = 1000;
  Sink sink;
  EXPECT_EQ(ReceiveChunks(peer, sink, 5, 0), kNetAborted);
  EXPECT_EQ(peer.reported, (std::vector<long long>{256, 512, 768, 1024}));
  EXPECT_EQ(sink.bytes, bytes.substr(0, 1024));
  EXPECT_EQ(peer.waiting, bytes.substr(1024));
}

TEST(ReceivedChunks, LeaveTheRestWhereItIsWhenTheStreamIsFull) {
  const std::string bytes = Pattern(10000);
  Peer peer(bytes);
  Sink sink;
  sink.holds = 600;
  EXPECT_EQ(ReceiveChunks(peer, sink, 5, 0), kNetSourceNotWritten);
  EXPECT_EQ(peer.reported, (std::vector<long long>{256, 512})) << "half a chunk does not count";
  EXPECT_EQ(peer.waiting, bytes.substr(768));
}

TEST(ReceivedChunks, AreAbortedRatherThanBroken) {
  Peer peer(Pattern(10000));
  peer.stopsAt = 1000;
  peer.failsToTake = true;
  Sink sink;
  EXPECT_EQ(ReceiveChunks(peer, sink, 5, 0), kNetAborted);
}

}  // namespace
