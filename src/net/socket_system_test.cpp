// What both systems have to do alike.
#include "net/socket_system.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "net/testing/sockets.h"

namespace {

constexpr long long kAtOnce = 0;
constexpr long long kSoon = 20000000;  // microseconds

class Connected : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_one.IsOpen());
    ASSERT_TRUE(m_other.IsOpen());
  }

  TestListener m_listener;
  TestSocket m_one = ConnectToLoopback(m_listener.Port());
  TestSocket m_other = m_listener.Accept();
  char m_buffer[16] = "";
};

TEST(SystemErrors, AreToldAsTheyWereSet) {
  using enum SocketError;
  for (SocketError error :
       {kNone,         kWouldBlock,        kInProgress,      kInterrupted,      kBadPointer,
        kBadArgument,  kNotASocket,        kMessageTooLong,  kNotSupported,     kNetworkDown,
        kNetworkReset, kConnectionAborted, kConnectionReset, kAlreadyConnected, kNotConnected,
        kShutDown,     kTimedOut,          kRefused,         kNotStarted,       kOther}) {
    SetLastSocketError(error);
    EXPECT_EQ(LastSocketError(), error);
  }
}

TEST_F(Connected, TellsWhetherItTimedOutOrWouldBlock) {
  SetSystemSocketTimeout(m_one.Get(), SocketDirection::kReceive, 50);
  EXPECT_EQ(ReceiveOnSystemSocket(m_one.Get(), m_buffer, sizeof m_buffer, 0), -1);
  EXPECT_EQ(LastSocketError(), SocketError::kTimedOut);
  ASSERT_EQ(SetSystemSocketBlocking(m_one.Get(), false), 0);
  EXPECT_EQ(ReceiveOnSystemSocket(m_one.Get(), m_buffer, sizeof m_buffer, 0), -1);
  EXPECT_EQ(LastSocketError(), SocketError::kWouldBlock);
}

TEST_F(Connected, KeepsWhatIsOnlyLookedAt) {
  m_other.Say("abc");
  ASSERT_EQ(WaitForSystemSocket(m_one.Get(), SocketEvent::kReadable, kSoon), SocketWait::kCame);
  EXPECT_EQ(PendingBytesOf(m_one.Get()), 3U);
  EXPECT_EQ(ReceiveOnSystemSocket(m_one.Get(), m_buffer, 2, kPeekFlag), 2);
  EXPECT_EQ(m_one.Hear(3), "abc");
  EXPECT_EQ(PendingBytesOf(m_one.Get()), 0U);
}

TEST_F(Connected, FailsToSendToAPeerThatHasGone) {
  m_other.Reset();
  ASSERT_EQ(WaitForSystemSocket(m_one.Get(), SocketEvent::kReadable, kSoon), SocketWait::kCame);
  while (SendOnSystemSocket(m_one.Get(), "x", 1, 0) == 1) {
  }
  const SocketError error = LastSocketError();
  EXPECT_TRUE(error == SocketError::kConnectionReset || error == SocketError::kConnectionAborted)
      << static_cast<int>(error);
}

TEST_F(Connected, IsReadableForBytesAndAtTheEnd) {
  EXPECT_EQ(WaitForSystemSocket(m_one.Get(), SocketEvent::kReadable, kAtOnce), SocketWait::kNotYet);
  EXPECT_EQ(WaitForSystemSocket(m_one.Get(), SocketEvent::kWritable, kAtOnce), SocketWait::kCame);
  m_other.Close();
  EXPECT_EQ(WaitForSystemSocket(m_one.Get(), SocketEvent::kReadable, kSoon), SocketWait::kCame);
  EXPECT_EQ(ReceiveOnSystemSocket(m_one.Get(), m_buffer, sizeof m_buffer, 0), 0);
}

TEST(SystemSockets, AreWaitedForInVainWhereThereIsNone) {
  NeedSockets();
  for (SocketEvent event : {SocketEvent::kReadable, SocketEvent::kWritable}) {
    EXPECT_EQ(WaitForSystemSocket(kNoSocket, event, kSoon), SocketWait::kNever);
    EXPECT_EQ(LastSocketError(), SocketError::kNotASocket);
  }
  EXPECT_EQ(CloseSystemSocket(kNoSocket), -1);
  EXPECT_EQ(LastSocketError(), SocketError::kNotASocket);
  EXPECT_EQ(OpenSystemSocket(77, kStreamSocket, 0), kNoSocket);
}

TEST(SystemSockets, ThatDoNotBlockAreConnectedLater) {
  const TestListener listener;
  const TestSocket socket(OpenSystemSocket(kInternetFamily, kStreamSocket, 0));
  ASSERT_EQ(SetSystemSocketBlocking(socket.Get(), false), 0);
  EXPECT_EQ(
      ConnectSystemSocket(socket.Get(), {kInternetFamily, ParseDottedAddress("127.0.0.1"), listener.Port()}),
      -1);
  EXPECT_EQ(LastSocketError(), SocketError::kWouldBlock);
  EXPECT_EQ(WaitForSystemSocket(socket.Get(), SocketEvent::kWritable, kSoon), SocketWait::kCame);
}

TEST(SystemSockets, ThatDoNotBlockAreRefusedLater) {
  const RefusingPort nobody;
  const TestSocket socket(OpenSystemSocket(kInternetFamily, kStreamSocket, 0));
  ASSERT_EQ(SetSystemSocketBlocking(socket.Get(), false), 0);
  EXPECT_EQ(
      ConnectSystemSocket(socket.Get(), {kInternetFamily, ParseDottedAddress("127.0.0.1"), nobody.Port()}),
      -1);
  EXPECT_EQ(LastSocketError(), SocketError::kWouldBlock);
  EXPECT_EQ(WaitForSystemSocket(socket.Get(), SocketEvent::kWritable, kSoon), SocketWait::kNever);
}

TEST(SystemSockets, ThatBlockAreRefusedAtOnce) {
  const RefusingPort nobody;
  const TestSocket socket(OpenSystemSocket(kInternetFamily, kStreamSocket, 0));
  EXPECT_EQ(
      ConnectSystemSocket(socket.Get(), {kInternetFamily, ParseDottedAddress("127.0.0.1"), nobody.Port()}),
      -1);
  EXPECT_EQ(LastSocketError(), SocketError::kRefused);
}

// As a data port has to be that was used a moment ago.
TEST(SystemSockets, TakeAPortWhoseConnectionsHaveEnded) {
  TestListener listener;
  const std::uint16_t port = listener.Port();
  TestSocket one = ConnectToLoopback(port);
  TestSocket other = listener.Accept();
  other.Close();  // first, so that its end keeps the port for a while
  EXPECT_EQ(one.HearToEnd(), "");
  one.Close();
  listener.Close();
  const TestSocket next(OpenSystemSocket(kInternetFamily, kStreamSocket, 0));
  EXPECT_EQ(BindSystemSocket(next.Get(), {kInternetFamily, ParseDottedAddress("127.0.0.1"), port}), 0);
}

TEST(SystemSockets, DoNotTakeAPortOnWhichSomebodyListens) {
  const TestListener listener;
  const TestSocket next(OpenSystemSocket(kInternetFamily, kStreamSocket, 0));
  EXPECT_EQ(BindSystemSocket(next.Get(), {kInternetFamily, kAnyIp, listener.Port()}), -1);
}

TEST(Addresses, AreReadAndWritten) {
  for (const char* text : {"127.0.0.1", "0.0.0.0", "192.0.2.254"}) {
    EXPECT_EQ(DottedAddress(ParseDottedAddress(text)), text);
  }
  for (const char* text : {"localhost", "1.2.3.256", "1.2.3.4.5", "1.2.3.4x"}) {
    EXPECT_EQ(ParseDottedAddress(text), kNoIp) << text;
  }
  EXPECT_EQ(DottedAddress(LookUpName("localhost")), "127.0.0.1");
}

TEST(SystemTicks, AreMilliseconds) {
  const std::uint64_t start = SystemTicks();
  SleepFor(100);
  EXPECT_GE(SystemTicks() - start, 80U);
  EXPECT_LT(SystemTicks() - start, 20000U);
}

}  // namespace
