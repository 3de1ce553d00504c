#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "net/testing/clients.h"
#include "net/testing/sockets.h"
#include "net/ws_client.h"

namespace {

constexpr char kLoopback[] = "127.0.0.1";

class Client : public Watched<CUT_WSClient> {
 public:
  int ShutdownSocket(SocketHandle socket, int how) override {
    shutDown.push_back(how);
    return Watched::ShutdownSocket(socket, how);
  }
  int CloseSocketHandle(SocketHandle socket) override {
    ++closed;
    return Watched::CloseSocketHandle(socket);
  }

  int closed = 0;
  std::vector<int> shutDown;
};

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

TEST(Datagrams, AreNotShutDownForAnAccept) {
  Client client;
  ASSERT_EQ(client.OpenDatagram(0, 0, nullptr), kNetSuccess);
  ASSERT_EQ(client.Listen(0), kNetSuccess);
  const TestSocket peer = ConnectToLoopback(client.GetListeningPort());
  EXPECT_EQ(client.AcceptConnection(), kNetSuccess);
  EXPECT_TRUE(client.shutDown.empty());
  EXPECT_EQ(client.closed, 1);
}

}  // namespace
