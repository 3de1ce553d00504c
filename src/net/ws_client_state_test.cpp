#include <gtest/gtest.h>

#include "net/testing/clients.h"
#include "net/testing/socket_options.h"
#include "net/testing/sockets.h"
#include "net/ws_client.h"
#include "support/open_handles.h"

namespace {

constexpr char kLoopback[] = "127.0.0.1";

class Client : public Watched<CUT_WSClient> {
 public:
  int OnSocketConnected(SocketHandle socket, const char*) override {
    raw = socket;
    return kNetSuccess;
  }
  int CreateSocketHandle(SocketHandle& socket, int family, int type, int protocol) override {
    const int code = Watched::CreateSocketHandle(socket, family, type, protocol);
    created = socket;
    return code;
  }
  int RecvRaw(SocketHandle socket, char* buffer, int length, int flags) override {
    if (failsWith == SocketError::kNone) return Watched::RecvRaw(socket, buffer, length, flags);
    SetLastSocketError(failsWith);
    return -1;
  }
  int ShutdownSocket(SocketHandle socket, int how) override {
    shutDown.push_back(how);
    return failsToShutDown ? -1 : Watched::ShutdownSocket(socket, how);
  }
  int CloseSocketHandle(SocketHandle socket) override {
    ++closed;
    const int result = Watched::CloseSocketHandle(socket);
    return failsToClose ? -1 : result;
  }

  SocketHandle raw = kNoSocket;
  SocketHandle created = kNoSocket;
  SocketError failsWith = SocketError::kNone;
  bool failsToShutDown = false;
  bool failsToClose = false;
  int closed = 0;
  std::vector<int> shutDown;
};

class State : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(m_client.Connect(m_listener.Port(), kLoopback, 5), kNetSuccess);
    m_peer = m_listener.Accept();
    ASSERT_TRUE(m_peer.IsOpen());
  }
  void ExpectTimeouts(int receive, int send) const {
    EXPECT_EQ(TimeoutOf(m_client.raw, SocketDirection::kReceive), receive);
    EXPECT_EQ(TimeoutOf(m_client.raw, SocketDirection::kSend), send);
  }

  TestListener m_listener;
  TestSocket m_peer;
  Client m_client;
};

TEST_F(State, IsConnectedWhileThePeerIsThere) {
  EXPECT_TRUE(m_client.IsConnected());
  m_peer.Say("x");
  ASSERT_EQ(m_client.WaitForReceive(5, 0), 0);
  EXPECT_TRUE(m_client.IsConnected());
  m_peer.CloseForSending();
  SleepFor(100);
  EXPECT_TRUE(m_client.IsConnected()) << "a byte is left to receive";
  char byte = 0;
  EXPECT_EQ(m_client.Receive(&byte, 1, 5), 1);
  EXPECT_EQ(byte, 'x');
  ASSERT_EQ(m_client.WaitForReceive(5, 0), 0);
  EXPECT_FALSE(m_client.IsConnected()) << "the peer sends no more";
}

TEST_F(State, IsReadableWhileThereIsSomethingAndAtTheEnd) {
  EXPECT_EQ(m_client.WaitReadable(m_client.raw, 0, 0), 1);
  m_peer.Say("xy");
  ASSERT_EQ(m_client.WaitReadable(m_client.raw, 5, 0), 0);
  char byte = 0;
  EXPECT_EQ(m_client.Receive(&byte, 1, 0), 1);
  EXPECT_EQ(m_client.WaitReadable(m_client.raw, 0, 0), 0) << "one more is there";
  EXPECT_EQ(m_client.Receive(&byte, 1, 0), 1);
  EXPECT_EQ(m_client.WaitReadable(m_client.raw, 0, 0), 1);
  m_peer.CloseForSending();
  EXPECT_EQ(m_client.WaitReadable(m_client.raw, 5, 0), 0);
  EXPECT_EQ(m_client.WaitReadable(kNoSocket, 0, 0), 1);
}

TEST_F(State, IsNotConnectedAfterAReset) {
  m_peer.Reset();
  ASSERT_EQ(m_client.WaitForReceive(5, 0), 0);
  EXPECT_FALSE(m_client.IsConnected());
}

TEST_F(State, IsNotConnectedWhenClosed) {
  m_client.CloseConnection();
  EXPECT_FALSE(m_client.IsConnected());
  EXPECT_FALSE(Client().IsConnected());
}

TEST_F(State, IsJudgedByWhatThePeekFailsWith) {
  using enum SocketError;
  for (SocketError error : {kWouldBlock, kInProgress, kNotConnected, kRefused, kOther}) {
    m_client.failsWith = error;
    EXPECT_TRUE(m_client.IsConnected()) << static_cast<int>(error);
  }
  for (SocketError error : {kConnectionAborted, kConnectionReset, kInterrupted, kBadPointer, kBadArgument,
                            kNotASocket, kMessageTooLong, kNotSupported, kNetworkDown, kNetworkReset,
                            kAlreadyConnected, kShutDown, kTimedOut}) {
    m_client.failsWith = error;
    EXPECT_FALSE(m_client.IsConnected()) << static_cast<int>(error);
  }
}

TEST_F(State, IsBlockingAfterTheQuestion) {
  ASSERT_EQ(m_client.SetBlockingMode(1), kNetSuccess);
  char byte = 0;
  EXPECT_EQ(m_client.Receive(&byte, 1, 0), -1);
  EXPECT_EQ(LastSocketError(), SocketError::kWouldBlock);
  EXPECT_TRUE(m_client.IsConnected());
  ASSERT_EQ(m_client.SetReceiveTimeout(300), kNetSuccess);
  const std::uint64_t start = SystemTicks();
  EXPECT_EQ(m_client.Receive(&byte, 1, 0), -1);
  EXPECT_GE(SystemTicks() - start, 200U) << "it blocked";
}

TEST_F(State, KeepsTimeOutsForLaterConnections) {
  ExpectTimeouts(30000, 30000);
  ASSERT_EQ(m_client.SetReceiveTimeout(1200), kNetSuccess);
  ASSERT_EQ(m_client.SetSendTimeout(5600), kNetSuccess);
  m_client.CloseConnection();
  ASSERT_EQ(m_client.Connect(m_listener.Port(), kLoopback, 5), kNetSuccess);
  ExpectTimeouts(1200, 5600);
  m_client.CloseConnection();
  ASSERT_EQ(m_client.Listen(0), kNetSuccess);
  const TestSocket peer = ConnectToLoopback(m_client.GetListeningPort());
  ASSERT_EQ(m_client.AcceptConnection(), kNetSuccess);
  ExpectTimeouts(1200, 5600);
}

TEST_F(State, KeepsTimeOutsForSocketsOfEveryKind) {
  ASSERT_EQ(m_client.SetReceiveTimeout(1200), kNetSuccess);
  ASSERT_EQ(m_client.SetSendTimeout(5600), kNetSuccess);
  const auto expectKept = [&](int opened, const char* how) {
    EXPECT_EQ(opened, kNetSuccess) << how;
    EXPECT_EQ(TimeoutOf(m_client.created, SocketDirection::kReceive), 1200) << how;
    EXPECT_EQ(TimeoutOf(m_client.created, SocketDirection::kSend), 5600) << how;
    m_client.CloseConnection();
  };
  m_client.CloseConnection();
  expectKept(m_client.Connect(m_listener.Port(), kLoopback, -1), "blocking");
  expectKept(m_client.ConnectBound(0, m_listener.Port(), nullptr, kLoopback), "bound");
  expectKept(m_client.OpenDatagram(0, 9, kLoopback), "datagrams");
  expectKept(m_client.Listen(0), "listening");
}

TEST_F(State, TellsEveryFailureToItsHook) {
  FakeSource source;
  char address[4];
  int length = 1;
  EXPECT_EQ(m_client.codes.back(), kNetSuccess);
  const auto expectTold = [&](int code, int expected) {
    EXPECT_EQ(code, expected);
    EXPECT_EQ(m_client.codes.back(), expected);
    m_client.codes.push_back(-1);
  };
  expectTold(m_client.Connect(1, kLoopback, 5), kNetSocketAlreadyOpen);
  expectTold(m_client.ConnectBound(0, 1, nullptr, kLoopback), kNetSocketAlreadyOpen);
  expectTold(m_client.OpenDatagram(0, 9, kLoopback), kNetSocketAlreadyOpen);
  expectTold(m_client.ReceiveToSource(source, 0, 1, 0), kNetBadMode);
  expectTold(m_client.LookUpAddress("localhost", address, sizeof address), kNetBufferTooShort);
  expectTold(m_client.AcceptConnection(), kNetFailed);
  expectTold(m_client.SendFileByName("no such file"), kNetSocketNotOpen);
  expectTold(m_client.SendDatagram("x", length), kNetSocketNotOpen);
  expectTold(m_client.ReceiveDatagram(address, length, 0), kNetSocketNotOpen);
  expectTold(m_client.DrainInput(), kNetSuccess);
  expectTold(m_client.Connect(1, "no-such-name.invalid", 5), kNetBadAddress);
}

TEST(ClosedClient, RefusesSettings) {
  Client client;
  EXPECT_EQ(client.SetReceiveTimeout(1), kNetFailed);
  EXPECT_EQ(client.SetSendTimeout(1), kNetFailed);
  EXPECT_EQ(client.SetBlockingMode(1), kNetFailed);
  EXPECT_EQ(client.GetReceiveTimeout(), 30000);
  EXPECT_EQ(client.GetSendTimeout(), 30000);
  EXPECT_EQ(client.codes, (std::vector<int>{kNetFailed, kNetFailed, kNetFailed}));
}

TEST(ClosedClient, ClosesAgainWithoutHarm) {
  Client client;
  EXPECT_EQ(client.CloseConnection(), kNetSuccess);
  EXPECT_TRUE(client.shutDown.empty());
}

TEST_F(State, IsForgottenWhenClosed) {
  EXPECT_EQ(m_client.CloseConnection(), kNetSuccess);
  EXPECT_EQ(m_client.shutDown, std::vector<int>{kShutDownBoth});
  EXPECT_EQ(m_client.GetRemotePort(), 0);
  EXPECT_EQ(m_client.GetLocalPort(), 0);
  EXPECT_STREQ(m_client.GetRemoteAddress(), "");
  EXPECT_EQ(m_peer.HearToEnd(), "");
}

TEST_F(State, IsForgottenEvenWhenClosingFails) {
  m_client.failsToShutDown = true;
  EXPECT_EQ(m_client.CloseConnection(), kNetFailed);
  EXPECT_TRUE(m_peer.IsLeftByPeer());
  EXPECT_EQ(m_client.CloseConnection(), kNetSuccess) << "nothing is open any more";
}

TEST_F(State, IsForgottenWithItsListeningSocket) {
  for (bool* failure : {&m_client.failsToShutDown, &m_client.failsToClose}) {
    ASSERT_EQ(m_client.Listen(0), kNetSuccess);
    *failure = true;
    EXPECT_EQ(m_client.CloseConnection(), kNetFailed);
    *failure = false;
    EXPECT_EQ(m_client.GetListeningPort(), 0);
    EXPECT_EQ(m_client.WaitForAccept(0), 1);
  }
  EXPECT_EQ(m_client.closed, 3);
  EXPECT_EQ(m_client.CloseConnection(), kNetSuccess) << "nothing is open any more";
}

TEST_F(State, OfABrokenConnectionEndsAnAccept) {
  for (bool* failure : {&m_client.failsToShutDown, &m_client.failsToClose}) {
    ASSERT_EQ(m_client.Listen(0), kNetSuccess);
    *failure = true;
    EXPECT_EQ(m_client.AcceptConnection(), kNetFailed);
    *failure = false;
    EXPECT_TRUE(m_peer.IsLeftByPeer());
    m_client.CloseConnection();
    ASSERT_EQ(m_client.Connect(m_listener.Port(), kLoopback, 5), kNetSuccess);
    m_peer = m_listener.Accept();
  }
}

TEST(Clients, LeaveNoSocketOpen) {
  const TestListener listener;
  const RefusingPort nobody;
  const auto cycle = [&] {
    Client client;
    client.Connect(listener.Port(), kLoopback, 5);
    listener.Accept();
    client.Listen(0);
    Client refused;
    refused.Connect(nobody.Port(), kLoopback, -1);
    refused.Listen(client.GetListeningPort());
    refused.OpenDatagram(0, 9, kLoopback);
  };
  EXPECT_FALSE(LeavesMoreAndMoreOpen([&] {
    for (int i = 0; i < 20; ++i) cycle();
  }));
}

}  // namespace
