#include "net/chunk_sender.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "net/error_codes.h"

namespace {

constexpr size_t kMost = kSendChunk * kMostChunksAtOnce;

class Source : public ByteStream {
 public:
  explicit Source(size_t size) : bytes(size, '\0') {
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 256);
  }

  int Read(char* buffer, size_t count) override {
    EXPECT_EQ(count, kSendChunk);
    const size_t read = std::min({count, bytes.size() - m_nPlace, readsAtMost});
    std::memcpy(buffer, bytes.data() + m_nPlace, read);
    m_nPlace += read;
    return m_nPlace > failsBehind ? -1 : static_cast<int>(read);
  }
  int Write(const char*, size_t) override { return -1; }
  long GetLength() override { return 0; }

  std::string bytes;
  size_t readsAtMost = kSendChunk;
  size_t failsBehind = std::numeric_limits<size_t>::max();

 private:
  size_t m_nPlace = 0;
};

// Its clock stands still but for what sending and reporting take.
class Peer : public SendSocket {
 public:
  bool SendAll(const char* bytes, int count) override {
    now += sendTakes;
    if (heard.size() + static_cast<size_t>(count) > breaksBehind) return false;
    heard.append(bytes, static_cast<size_t>(count));
    sizes.push_back(static_cast<size_t>(count));
    return true;
  }
  bool GoesOn(long long bytes) override {
    now += reportTakes;
    reported.push_back(bytes);
    heardAtReport.push_back(heard.size());
    return bytes < stopsAt;
  }
  std::uint64_t Milliseconds() override { return now; }

  std::string heard;
  std::vector<size_t> sizes;
  std::vector<long long> reported;
  std::vector<size_t> heardAtReport;
  std::uint64_t now = 1000;
  std::uint64_t sendTakes = 0;
  std::uint64_t reportTakes = 0;
  size_t breaksBehind = std::numeric_limits<size_t>::max();
  long long stopsAt = std::numeric_limits<long long>::max();
};

std::vector<long long> EveryChunkOf(size_t size) {
  std::vector<long long> totals;
  for (size_t total = 0; total < size;) {
    total = std::min(total + kSendChunk, size);
    totals.push_back(static_cast<long long>(total));
  }
  return totals;
}

TEST(SentChunks, AreReportedOneByOneAndArriveAsTheyWere) {
  for (const size_t size :
       {size_t{0}, size_t{1}, kSendChunk, kSendChunk + 1, kMost, kMost + 1, 5 * kMost + 17}) {
    Source source(size);
    Peer peer;
    EXPECT_EQ(SendChunks(source, peer), kNetSuccess);
    EXPECT_TRUE(peer.heard == source.bytes) << size;
    EXPECT_EQ(peer.reported, EveryChunkOf(size));
  }
}

TEST(SentChunks, GoOutTogetherWhileSendsAreQuick) {
  Source source(4 * kMost);
  Peer peer;
  EXPECT_EQ(SendChunks(source, peer), kNetSuccess);
  ASSERT_GE(peer.sizes.size(), 10U);
  for (size_t i = 0, chunks = 1; i < 10; ++i, chunks = std::min(2 * chunks, kMostChunksAtOnce)) {
    EXPECT_EQ(peer.sizes[i], chunks * kSendChunk) << i;
  }
  EXPECT_LE(*std::max_element(peer.sizes.begin(), peer.sizes.end()), kMost);
}

TEST(SentChunks, GoOutOneByOneWhereASendTakesLong) {
  Source source(20 * kSendChunk);
  Peer peer;
  peer.sendTakes = 50;
  EXPECT_EQ(SendChunks(source, peer), kNetSuccess);
  EXPECT_EQ(peer.sizes, std::vector<size_t>(20, kSendChunk));
}

TEST(SentChunks, BecomeFewerWhenTheConnectionSlowsDown) {
  class Slowing : public Peer {
   public:
    bool SendAll(const char* bytes, int count) override {
      if (sizes.size() == 7) sendTakes = 50;
      return Peer::SendAll(bytes, count);
    }
  };
  Source source(500 * kSendChunk);
  Slowing peer;
  EXPECT_EQ(SendChunks(source, peer), kNetSuccess);
  std::vector<size_t> chunks;
  for (size_t i = 6; i < 15; ++i) chunks.push_back(peer.sizes[i] / kSendChunk);
  EXPECT_EQ(chunks, (std::vector<size_t>{64, 128, 64, 32, 16, 8, 4, 2, 1}));
  EXPECT_TRUE(peer.heard == source.bytes);
}

TEST(SentChunks, DoNotWaitForOthersThatComeSlowly) {
  for (const std::uint64_t milliseconds : {50U, 60U}) {
    Source source(40 * kSendChunk);
    Peer peer;
    peer.reportTakes = milliseconds;
    EXPECT_EQ(SendChunks(source, peer), kNetSuccess);
    for (size_t i = 0; i < peer.reported.size(); ++i) {
      EXPECT_EQ(peer.heardAtReport[i], static_cast<size_t>(peer.reported[i])) << i;
    }
    EXPECT_TRUE(peer.heard == source.bytes);
  }
}

TEST(SentChunks, AreSmallWhenTheSourceGivesLittle) {
  Source source(1000);
  source.readsAtMost = 10;
  Peer peer;
  EXPECT_EQ(SendChunks(source, peer), kNetSuccess);
  EXPECT_EQ(peer.reported.size(), 100U);
  EXPECT_TRUE(peer.heard == source.bytes);
}

TEST(SentChunks, HaveAllArrivedThatWereReportedBeforeAnAbort) {
  for (const long long stop : {1LL, 255LL, 256LL, 1000LL, 20000LL, 100000LL}) {
    Source source(5 * kMost);
    Peer peer;
    peer.stopsAt = stop;
    EXPECT_EQ(SendChunks(source, peer), kNetAborted);
    const auto reported = static_cast<size_t>(peer.reported.back());
    EXPECT_LT(reported, static_cast<size_t>(stop) + kSendChunk);
    EXPECT_TRUE(peer.heard == source.bytes.substr(0, reported)) << stop;
  }
}

TEST(SentChunks, AreAllSentBeforeASourceThatFails) {
  Source source(5000);
  source.failsBehind = 9 * kSendChunk;
  Peer peer;
  EXPECT_EQ(SendChunks(source, peer), kNetSuccess);
  EXPECT_TRUE(peer.heard == source.bytes.substr(0, 9 * kSendChunk));
}

TEST(SentChunks, FailBeforeAnyReportWhereNothingCanBeSent) {
  Source source(5000);
  Peer peer;
  peer.breaksBehind = 0;
  EXPECT_EQ(SendChunks(source, peer), kNetSendFailed);
  EXPECT_TRUE(peer.reported.empty());
}

TEST(SentChunks, FailWithTheConnectionWhereverItBreaks) {
  for (size_t broken = 0; broken < 3 * kMost; broken += 5000) {
    Source source(3 * kMost);
    Peer peer;
    peer.breaksBehind = broken;
    EXPECT_EQ(SendChunks(source, peer), kNetSendFailed) << broken;
    EXPECT_TRUE(source.bytes.starts_with(peer.heard));
  }
}

}  // namespace
