#include "net/line_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

namespace {

// Bytes that arrive in packets: only those of the first one can be peeked.
class FakeSocket : public LineSocket {
 public:
  FakeSocket(std::initializer_list<std::string> packets) : m_vPackets(packets) {}

  bool IsAborted() override {
    if (m_nAbortIn > 0) {
      --m_nAbortIn;
      return false;
    }
    return m_nAbortIn == 0;
  }
  bool WaitForData(long seconds) override {
    m_vWaits.push_back(seconds);
    return !m_vPackets.empty();
  }
  int Peek(char* buffer, int count) override { return Move(buffer, count, false); }
  int Take(char* buffer, int count) override {
    if (m_nTakesLeft-- == 0) return -1;
    return Move(buffer, std::min(count, m_nMostTaken), true);
  }

  std::string Rest() const {
    std::string rest;
    for (const std::string& packet : m_vPackets) rest += packet;
    return rest;
  }

  int m_nAbortIn = -1;  // polls until the abort; negative: never
  int m_nAtEnd = 0;     // what reading tells when no packet is left
  int m_nMostTaken = 1 << 20;
  int m_nTakesLeft = -1;  // negative: without limit
  std::vector<long> m_vWaits;

 private:
  int Move(char* buffer, int count, bool remove) {
    EXPECT_GT(count, 0);
    if (m_vPackets.empty()) return m_nAtEnd;
    std::string& packet = m_vPackets.front();
    const size_t moved = std::min(packet.size(), static_cast<size_t>(count));
    std::memcpy(buffer, packet.data(), moved);
    if (remove) packet.erase(0, moved);
    if (packet.empty()) m_vPackets.pop_front();
    return static_cast<int>(moved);
  }

  std::deque<std::string> m_vPackets;
};

// The buffer is as large as the size says, so that the sanitizers see a byte too much.
std::string Read(LineSocket& socket, size_t size = 100, long seconds = 0) {
  std::vector<char> buffer(size, '#');
  const int count = ReadLineFrom(socket, buffer.data(), size, seconds);
  EXPECT_EQ(buffer.at(static_cast<size_t>(count)), '\0');
  // Behind the terminator nothing was touched.
  EXPECT_EQ(std::count(buffer.begin() + count + 1, buffer.end(), '#'), static_cast<long>(size) - count - 1);
  return std::string(buffer.data(), static_cast<size_t>(count));
}

TEST(LineReader, LeavesTheNextLineInTheSocket) {
  FakeSocket socket{"220 ready\r\n331 more\r\n"};
  EXPECT_EQ(Read(socket), "220 ready\r\n");
  EXPECT_EQ(socket.Rest(), "331 more\r\n");
  EXPECT_EQ(Read(socket), "331 more\r\n");
  EXPECT_EQ(Read(socket), "");
}

TEST(LineReader, PutsPacketsTogether) {
  FakeSocket socket{"2", "20 re", "ady\r", "\n33", "1\n"};
  EXPECT_EQ(Read(socket), "220 ready\r\n");
  EXPECT_EQ(Read(socket), "331\n");
}

TEST(LineReader, GivesALongLineInPieces) {
  FakeSocket socket{"abcdefgh\r\nx\n"};
  EXPECT_EQ(Read(socket, 5), "abcd");
  EXPECT_EQ(Read(socket, 5), "efgh");
  EXPECT_EQ(Read(socket, 5), "\r\n");
  EXPECT_EQ(Read(socket, 5), "x\n");
}

TEST(LineReader, KeepsItsSizeOverSeveralPackets) {
  FakeSocket socket{"abc", "defgh\n"};
  EXPECT_EQ(Read(socket, 5), "abcd");
  EXPECT_EQ(socket.Rest(), "efgh\n");
}

TEST(LineReader, EndsAtTheLineFeedThatJustFits) {
  FakeSocket socket{"abc\nd"};
  EXPECT_EQ(Read(socket, 5), "abc\n");
  EXPECT_EQ(socket.Rest(), "d");
}

TEST(LineReader, HasNoRoomInASizeOfOneOrNone) {
  FakeSocket socket{"abc\n"};
  EXPECT_EQ(Read(socket, 1), "");
  char untouched[] = "x";
  EXPECT_EQ(ReadLineFrom(socket, untouched, 0, 0), 0);
  EXPECT_STREQ(untouched, "x");
  EXPECT_EQ(ReadLineFrom(socket, nullptr, 100, 0), 0);
  EXPECT_EQ(socket.Rest(), "abc\n");
}

TEST(LineReader, KeepsZeroBytes) {
  FakeSocket socket{std::string("a\0b\nc", 5)};
  EXPECT_EQ(Read(socket), std::string("a\0b\n", 4));
  EXPECT_EQ(socket.Rest(), "c");
}

TEST(LineReader, WaitsBeforeEachPeekWhenSecondsAreGiven) {
  for (const long seconds : {1L, 30L}) {
    FakeSocket socket{"ab", "c\n"};
    EXPECT_EQ(Read(socket, 100, seconds), "abc\n");
    EXPECT_EQ(socket.m_vWaits, std::vector<long>({seconds, seconds}));
  }
}

TEST(LineReader, DoesNotWaitOtherwise) {
  FakeSocket socket{"ab", "c\n"};
  EXPECT_EQ(Read(socket, 100, 0), "abc\n");
  FakeSocket another{"ab", "c\n"};
  EXPECT_EQ(Read(another, 100, -1), "abc\n");
  EXPECT_TRUE(socket.m_vWaits.empty());
  EXPECT_TRUE(another.m_vWaits.empty());
}

TEST(LineReader, ReturnsWhatCameBeforeTheSilence) {
  FakeSocket socket{"half a li"};
  EXPECT_EQ(Read(socket, 100, 5), "half a li");
  EXPECT_EQ(socket.m_vWaits, std::vector<long>({5, 5}));
}

TEST(LineReader, ReturnsWhatCameBeforeTheEndOrAFailure) {
  for (const int end : {0, -1}) {
    FakeSocket socket{"half a li"};
    socket.m_nAtEnd = end;
    EXPECT_EQ(Read(socket), "half a li");
    EXPECT_EQ(Read(socket), "");
  }
}

TEST(LineReader, ReturnsWhatCameBeforeWhatCannotBeTaken) {
  FakeSocket socket{"half a ", "line\n"};
  socket.m_nTakesLeft = 1;
  EXPECT_EQ(Read(socket), "half a ");
}

TEST(LineReader, IsAbortedBetweenPackets) {
  FakeSocket socket{"ab", "c\n"};
  socket.m_nAbortIn = 1;
  EXPECT_EQ(Read(socket), "ab");
  EXPECT_EQ(socket.Rest(), "c\n");
  EXPECT_EQ(Read(socket), "");
}

TEST(LineReader, GoesOnWhenLessIsReceivedThanPeeked) {
  FakeSocket socket{"abcdef\nrest"};
  socket.m_nMostTaken = 2;
  EXPECT_EQ(Read(socket), "abcdef\n");
  EXPECT_EQ(socket.Rest(), "rest");
}

TEST(LineReader, TakesAVeryLongLine) {
  const std::string line = std::string(10000000, 'x') + "\r\n";
  FakeSocket socket{line, "next"};
  EXPECT_EQ(Read(socket, 20000000), line);
  EXPECT_EQ(socket.Rest(), "next");
}

}  // namespace
