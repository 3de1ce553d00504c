#include <gtest/gtest.h>

#include <memory>

#include "net/testing/clients.h"
#include "net/testing/sockets.h"
#include "net/ws_client.h"
#include "support/open_handles.h"

namespace {

constexpr char kLoopback[] = "127.0.0.1";

class Client : public Watched<CUT_WSClient> {
 public:
  int OnSocketConnected(SOCKET socket, const char*) override {
    raw = socket;
    return kNetSuccess;
  }
  int CreateSocketHandle(SOCKET& socket, int family, int type, int protocol) override {
    const int code = Watched::CreateSocketHandle(socket, family, type, protocol);
    created = socket;
    return code;
  }
  int RecvRaw(SOCKET socket, char* buffer, int length, int flags) override {
    if (failsWith == 0) return Watched::RecvRaw(socket, buffer, length, flags);
    WSASetLastError(failsWith);
    return SOCKET_ERROR;
  }
  int ShutdownSocket(SOCKET socket, int how) override {
    shutDown.push_back(how);
    return failsToShutDown ? SOCKET_ERROR : Watched::ShutdownSocket(socket, how);
  }
  int CloseSocketHandle(SOCKET socket) override {
    ++closed;
    const int result = Watched::CloseSocketHandle(socket);
    return failsToClose ? SOCKET_ERROR : result;
  }
  void OnNotification1(int low, int high) override { notes.push_back({1, low, high}); }
  void OnNotification2(int high) override { notes.push_back({2, high}); }
  void OnNotification3(int high) override { notes.push_back({3, high}); }

  SOCKET raw = INVALID_SOCKET;
  SOCKET created = INVALID_SOCKET;
  int failsWith = 0;
  bool failsToShutDown = false;
  bool failsToClose = false;
  int closed = 0;
  std::vector<int> shutDown;
  std::vector<std::vector<int>> notes;
};

// The socket's own idea, in milliseconds.
int TimeOut(SOCKET socket, int option) {
  int value = -1;
  int size = sizeof value;
  getsockopt(socket, SOL_SOCKET, option, reinterpret_cast<char*>(&value), &size);
  return value;
}

class State : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(m_client.Connect(m_listener.Port(), kLoopback, 5), kNetSuccess);
    m_peer = m_listener.Accept();
    ASSERT_TRUE(m_peer.IsOpen());
  }
  int Option(int option) const { return TimeOut(m_client.raw, option); }

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
  Sleep(100);
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
  EXPECT_EQ(m_client.WaitReadable(INVALID_SOCKET, 0, 0), 1);
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
  for (int error : {WSAEWOULDBLOCK, WSAEINPROGRESS, WSAENOTCONN}) {
    m_client.failsWith = error;
    EXPECT_TRUE(m_client.IsConnected()) << error;
  }
  for (int error : {WSAECONNABORTED, WSAECONNRESET, WSAEINTR, WSAEFAULT, WSAEINVAL, WSAENOTSOCK, WSAEMSGSIZE,
                    WSAEOPNOTSUPP, WSAENETDOWN, WSAENETRESET, WSAEISCONN, WSAESHUTDOWN, WSAETIMEDOUT}) {
    m_client.failsWith = error;
    EXPECT_FALSE(m_client.IsConnected()) << error;
  }
}

TEST_F(State, IsBlockingAfterTheQuestion) {
  ASSERT_EQ(m_client.SetBlockingMode(1), kNetSuccess);
  char byte = 0;
  EXPECT_EQ(m_client.Receive(&byte, 1, 0), -1);
  EXPECT_EQ(WSAGetLastError(), WSAEWOULDBLOCK);
  EXPECT_TRUE(m_client.IsConnected());
  ASSERT_EQ(m_client.SetReceiveTimeout(300), kNetSuccess);
  const ULONGLONG start = GetTickCount64();
  EXPECT_EQ(m_client.Receive(&byte, 1, 0), -1);
  EXPECT_GE(GetTickCount64() - start, 200U) << "it blocked";
}

TEST_F(State, KeepsTimeOutsForLaterConnections) {
  EXPECT_EQ(Option(SO_RCVTIMEO), 30000);
  EXPECT_EQ(Option(SO_SNDTIMEO), 30000);
  ASSERT_EQ(m_client.SetReceiveTimeout(1234), kNetSuccess);
  ASSERT_EQ(m_client.SetSendTimeout(5678), kNetSuccess);
  m_client.CloseConnection();
  ASSERT_EQ(m_client.Connect(m_listener.Port(), kLoopback, 5), kNetSuccess);
  EXPECT_EQ(Option(SO_RCVTIMEO), 1234);
  EXPECT_EQ(Option(SO_SNDTIMEO), 5678);
  m_client.CloseConnection();
  ASSERT_EQ(m_client.Listen(0), kNetSuccess);
  const TestSocket peer = ConnectToLoopback(m_client.GetListeningPort());
  ASSERT_EQ(m_client.AcceptConnection(), kNetSuccess);
  EXPECT_EQ(Option(SO_RCVTIMEO), 1234);
  EXPECT_EQ(Option(SO_SNDTIMEO), 5678);
}

TEST_F(State, KeepsTimeOutsForSocketsOfEveryKind) {
  ASSERT_EQ(m_client.SetReceiveTimeout(1234), kNetSuccess);
  ASSERT_EQ(m_client.SetSendTimeout(5678), kNetSuccess);
  const auto expectKept = [&](int opened, const char* how) {
    EXPECT_EQ(opened, kNetSuccess) << how;
    EXPECT_EQ(TimeOut(m_client.created, SO_RCVTIMEO), 1234) << how;
    EXPECT_EQ(TimeOut(m_client.created, SO_SNDTIMEO), 5678) << how;
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
  EXPECT_EQ(m_client.shutDown, std::vector<int>{SD_BOTH});
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

TEST(Datagrams, GoBothWays) {
  Client one;
  Client other;
  ASSERT_EQ(one.OpenDatagram(0, 0, nullptr), kNetSuccess);
  ASSERT_EQ(other.OpenDatagram(0, one.GetLocalPort(), kLoopback, kLoopback), kNetSuccess);
  EXPECT_EQ(other.GetRemotePort(), one.GetLocalPort());
  int length = 5;
  EXPECT_EQ(other.SendDatagram("hello", length), kNetSuccess);
  EXPECT_EQ(length, 5);
  char buffer[16] = {};
  length = sizeof buffer;
  EXPECT_EQ(one.ReceiveDatagram(buffer, length, 5), kNetSuccess);
  EXPECT_EQ(std::string(buffer, static_cast<size_t>(length)), "hello");
  EXPECT_EQ(one.GetRemotePort(), other.GetLocalPort()) << "the answer goes to the sender";
  length = 2;
  EXPECT_EQ(one.SendDatagram("hi", length), kNetSuccess);
  length = sizeof buffer;
  EXPECT_EQ(other.ReceiveDatagram(buffer, length, 5), kNetSuccess);
  EXPECT_EQ(length, 2);
  EXPECT_EQ(one.CloseConnection(), kNetSuccess);
  EXPECT_TRUE(one.shutDown.empty()) << "there is no connection to shut down";
}

TEST(Datagrams, FailAsTold) {
  Client client;
  char buffer[4] = {};
  int length = sizeof buffer;
  EXPECT_EQ(client.SendDatagram(buffer, length), kNetSocketNotOpen);
  EXPECT_EQ(client.ReceiveDatagram(buffer, length, 1), kNetSocketNotOpen);
  Client taken;
  ASSERT_EQ(taken.OpenDatagram(0, 0, nullptr, kLoopback), kNetSuccess);
  EXPECT_EQ(client.OpenDatagram(taken.GetLocalPort(), 0, nullptr, kLoopback), kNetNotBound);
  ASSERT_EQ(client.OpenDatagram(0, taken.GetLocalPort(), kLoopback), kNetSuccess);
  EXPECT_EQ(client.ReceiveDatagram(buffer, length, 1), kNetTimedOut);
  EXPECT_EQ(client.ReceiveDatagram(nullptr, length, 1), kNetNullBuffer);
  EXPECT_EQ(client.SendDatagram(nullptr, length), kNetNullBuffer);
  length = 1 << 20;
  const std::string large(static_cast<size_t>(length), 'x');
  EXPECT_EQ(client.SendDatagram(large.data(), length), kNetSendFailed);
  EXPECT_EQ(length, 0);
  length = 9;
  ASSERT_EQ(client.SendDatagram("too large", length), kNetSuccess);
  length = sizeof buffer;
  EXPECT_EQ(taken.ReceiveDatagram(buffer, length, 5), kNetReceiveFailed);
}

TEST(NotifyWindow, ForwardsItsMessages) {
  Client client;
  const HINSTANCE module = GetModuleHandleA(nullptr);
  ASSERT_EQ(client.CreateNotifyWindow(module), kNetSuccess);
  ASSERT_EQ(client.CreateNotifyWindow(module), kNetSuccess) << "it is there already";
  Client second;
  ASSERT_EQ(second.CreateNotifyWindow(module), kNetSuccess) << "the class is there already";
  HWND windows[2] = {};
  windows[0] = FindWindowExA(HWND_MESSAGE, nullptr, "CUT_WSClient", nullptr);
  windows[1] = FindWindowExA(HWND_MESSAGE, windows[0], "CUT_WSClient", nullptr);
  ASSERT_NE(windows[1], nullptr);
  EXPECT_EQ(FindWindowExA(HWND_MESSAGE, windows[1], "CUT_WSClient", nullptr), nullptr);
  for (HWND window : windows) {
    SendMessageA(window, 1152, 7, MAKELPARAM(11, 12));
    SendMessageA(window, 1153, 7, MAKELPARAM(21, 22));
    SendMessageA(window, 1154, 7, MAKELPARAM(31, 32));
    SendMessageA(window, 1155, 7, 0);
  }
  const std::vector<std::vector<int>> expected = {{1, 11, 12}, {2, 22}, {3, 32}};
  EXPECT_EQ(client.notes, expected);
  EXPECT_EQ(second.notes, expected);
}

TEST(Datagrams, AreNotShutDownForAnAccept) {
  Client client;
  ASSERT_EQ(client.OpenDatagram(0, 0, nullptr), kNetSuccess);
  ASSERT_EQ(client.Listen(0), kNetSuccess);
  const TestSocket peer = ConnectToLoopback(client.GetListeningPort());
  EXPECT_EQ(client.AcceptConnection(), kNetSuccess);
  EXPECT_TRUE(client.shutDown.empty());
  EXPECT_EQ(client.closed, 1);
}

TEST(NotifyWindow, FailsWhenTheWindowDoes) {
  const HINSTANCE module = GetModuleHandleA(nullptr);
  UnregisterClassA("CUT_WSClient", module);
  WNDCLASSA unwilling = {};
  unwilling.lpfnWndProc = [](HWND, UINT, WPARAM, LPARAM) -> LRESULT { return FALSE; };
  unwilling.hInstance = module;
  unwilling.lpszClassName = "CUT_WSClient";
  ASSERT_NE(RegisterClassA(&unwilling), 0);
  Client client;
  EXPECT_EQ(client.CreateNotifyWindow(module), kNetFailed);
  EXPECT_EQ(client.codes, std::vector<int>{kNetFailed});
  ASSERT_TRUE(UnregisterClassA("CUT_WSClient", module));
  EXPECT_EQ(client.CreateNotifyWindow(module), kNetSuccess);
}

TEST(NotifyWindow, BelongsToNobodyWhenItIsCreated) {
  Client client;
  ASSERT_EQ(client.CreateNotifyWindow(GetModuleHandleA(nullptr)), kNetSuccess);
  const HWND window = FindWindowExA(HWND_MESSAGE, nullptr, "CUT_WSClient", nullptr);
  ASSERT_NE(GetWindowLongPtrA(window, 0), 0);
  SendMessageA(window, WM_CREATE, 0, 0);
  EXPECT_EQ(GetWindowLongPtrA(window, 0), 0);
  SendMessageA(window, 1152, 7, MAKELPARAM(11, 12));
  EXPECT_TRUE(client.notes.empty());
}

TEST(NotifyWindow, EndsWithItsClient) {
  {
    Client client;
    ASSERT_EQ(client.CreateNotifyWindow(GetModuleHandleA(nullptr)), kNetSuccess);
  }
  EXPECT_EQ(FindWindowExA(HWND_MESSAGE, nullptr, "CUT_WSClient", nullptr), nullptr);
}

TEST(Clients, LeaveNoSocketOpen) {
  const TestListener listener;
  const auto cycle = [&] {
    Client client;
    client.Connect(listener.Port(), kLoopback, 5);
    listener.Accept();
    client.Listen(0);
    Client refused;
    refused.Connect(UnusedPort(), kLoopback, -1);
    refused.Listen(client.GetListeningPort());
    refused.OpenDatagram(0, 9, kLoopback);
  };
  cycle();
  const int before = CountOpenHandles();
  for (int i = 0; i < 20; ++i) cycle();
  EXPECT_EQ(CountOpenHandles(), before);
}

TEST(Clients, StartAndStopWindowsSocketsOnceEach) {
  NeedWinsock();
  auto first = std::make_unique<Client>();
  {
    Client second;
    first.reset();
  }
  EXPECT_EQ(WSACleanup(), 0) << "the test's own start";
  EXPECT_EQ(WSACleanup(), SOCKET_ERROR) << "there is no other";
  WSADATA again;
  ASSERT_TRUE(StartWinsock(again));
  EXPECT_EQ(again.wVersion, MAKEWORD(1, 1));
}

}  // namespace
