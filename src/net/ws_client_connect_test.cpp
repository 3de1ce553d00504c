#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "net/testing/clients.h"
#include "net/testing/socket_options.h"
#include "net/testing/sockets.h"
#include "net/ws_client.h"

namespace {

constexpr char kLoopback[] = "127.0.0.1";

class Client : public Watched<CUT_WSClient> {
 public:
  int CreateSocketHandle(SocketHandle& socket, int family, int type, int protocol) override {
    if (createsDatagram) type = kDatagramSocket;
    if (!failsToCreate) return Watched::CreateSocketHandle(socket, family, type, protocol);
    socket = kNoSocket;
    return OnError(kNetFailed);
  }
  int WaitWritable(long seconds, long microseconds) override {
    waits.emplace_back(seconds, microseconds);
    return neverWritable ? 1 : Watched::WaitWritable(seconds, microseconds);
  }
  int OnSocketConnected(SocketHandle socket, const char* remoteAddress) override {
    greeted = remoteAddress;
    greetedSocket = socket;
    return greetingResult;
  }
  int CloseSocketHandle(SocketHandle socket) override {
    ++closed;
    return Watched::CloseSocketHandle(socket);
  }

  bool failsToCreate = false;
  bool createsDatagram = false;
  bool neverWritable = false;
  std::vector<std::pair<long, long>> waits;
  std::string greeted;
  SocketHandle greetedSocket = kNoSocket;
  int greetingResult = 0;
  int closed = 0;
};

TEST(Connecting, ReachesAListenerAndKnowsBothPorts) {
  const TestListener listener;
  Client client;
  ASSERT_EQ(client.Connect(listener.Port(), kLoopback, 5), kNetSuccess);
  TestSocket peer = listener.Accept();
  EXPECT_EQ(client.GetRemotePort(), listener.Port());
  EXPECT_EQ(client.GetLocalPort(), PeerPortOf(peer.Get()));
  EXPECT_STREQ(client.GetRemoteAddress(), kLoopback);
  EXPECT_EQ(client.waits, (std::vector<std::pair<long, long>>{{5, 0}}));
  EXPECT_EQ(client.greeted, kLoopback);
}

TEST(Connecting, BlocksWithoutAWaitWhenTheTimeOutIsNegative) {
  const TestListener listener;
  Client client;
  ASSERT_EQ(client.Connect(listener.Port(), kLoopback, -1), kNetSuccess);
  EXPECT_TRUE(client.waits.empty());
  EXPECT_EQ(client.GetRemotePort(), 0) << "connected at once: the ports are left as they were";
}

TEST(Connecting, LeavesTheSocketBlocking) {
  const TestListener listener;
  Client client;
  ASSERT_EQ(client.Connect(listener.Port(), kLoopback, 5), kNetSuccess);
  TestSocket peer = listener.Accept();
  std::thread later([&] {
    SleepFor(300);
    peer.Say("x");
  });
  char byte = 0;
  EXPECT_EQ(client.Receive(&byte, 1, 0), 1) << "a non-blocking socket has nothing yet";
  later.join();
}

TEST(Connecting, IsRefusedWhenItBlocks) {
  const RefusingPort nobody;
  Client client;
  EXPECT_EQ(client.Connect(nobody.Port(), kLoopback, -1), kNetNotConnected);
  EXPECT_EQ(client.closed, 1);
  EXPECT_EQ(client.codes.back(), kNetNotConnected);
}

TEST(Connecting, EndsWithItsTimeOutWhenNobodyAnswers) {
  const TestListener listener;
  Client client;
  client.neverWritable = true;
  EXPECT_EQ(client.Connect(listener.Port(), kLoopback, 7), kNetConnectTimedOut);
  EXPECT_EQ(client.waits, (std::vector<std::pair<long, long>>{{7, 0}}));
  EXPECT_EQ(client.closed, 1);
  client.neverWritable = false;
  EXPECT_EQ(client.Connect(listener.Port(), kLoopback, 7), kNetSuccess) << "and can be tried again";
}

TEST(Connecting, DoesNotWaitOnceItIsRefused) {
  const RefusingPort nobody;
  Client client;
  const std::uint64_t start = SystemTicks();
  EXPECT_EQ(client.Connect(nobody.Port(), kLoopback, 60), kNetConnectTimedOut);
  EXPECT_LT(SystemTicks() - start, 30000U);
  EXPECT_EQ(client.closed, 1);
}

// No dotted address is longer, but the system takes one with blanks behind it.
TEST(Connecting, KeepsThirtyCharactersOfTheAddress) {
  const TestListener listener;
  const std::string padded = std::string(kLoopback) + std::string(60, ' ');
  Client client;
  ASSERT_EQ(client.Connect(listener.Port(), padded.c_str(), 5), kNetSuccess);
  EXPECT_EQ(client.GetRemoteAddress(), padded.substr(0, 30));
  EXPECT_EQ(client.greeted, padded);
}

TEST(Connecting, LeavesAnOpenSocketAlone) {
  const TestListener listener;
  Client client;
  ASSERT_EQ(client.Connect(listener.Port(), kLoopback, 5), kNetSuccess);
  TestSocket peer = listener.Accept();
  EXPECT_EQ(client.Connect(listener.Port(), kLoopback, 5), kNetSocketAlreadyOpen);
  EXPECT_EQ(client.ConnectBound(0, listener.Port(), kLoopback, kLoopback), kNetSocketAlreadyOpen);
  EXPECT_EQ(client.OpenDatagram(0, 9, kLoopback), kNetSocketAlreadyOpen);
  EXPECT_EQ(client.closed, 0);
  EXPECT_EQ(client.Send("x"), 1);
  EXPECT_EQ(peer.Hear(1), "x");
}

TEST(Connecting, TellsWhenThereIsNoSocket) {
  const TestListener listener;
  Client client;
  client.failsToCreate = true;
  EXPECT_EQ(client.Connect(listener.Port(), kLoopback, 5), kNetSocketNotCreated);
  EXPECT_EQ(client.ConnectBound(0, listener.Port(), kLoopback, kLoopback), kNetSocketNotCreated);
  EXPECT_EQ(client.OpenDatagram(0, 9, kLoopback), kNetSocketNotCreated);
  EXPECT_EQ(client.Listen(0), kNetSocketNotCreated);
  EXPECT_EQ(client.closed, 0);
}

TEST(Connecting, RefusesAFamilyThatDoesNotExist) {
  Client client;
  EXPECT_EQ(client.Connect(9, kLoopback, 5, 77), kNetSocketNotCreated);
}

TEST(Connecting, IsUndoneByWhatTheGreetingSays) {
  const TestListener listener;
  Client client;
  client.greetingResult = kNetConnectionFailed;
  EXPECT_EQ(client.Connect(listener.Port(), kLoopback, 5), kNetConnectionFailed);
  EXPECT_EQ(client.closed, 1);
  EXPECT_EQ(client.codes.back(), kNetConnectionFailed);
  EXPECT_TRUE(listener.Accept().IsLeftByPeer());
  EXPECT_FALSE(client.IsConnected());
}

TEST(Names, AreLookedUpBehindTheLastAt) {
  const TestListener listener;
  for (const char* name : {"localhost", "ann@localhost", "a@b@localhost", "@ann@localhost"}) {
    Client client;
    EXPECT_EQ(client.Connect(listener.Port(), name, 5), kNetSuccess) << name;
    EXPECT_STREQ(client.GetRemoteAddress(), kLoopback) << name;
    EXPECT_EQ(client.greeted, name) << "the address as it was given";
  }
}

TEST(Names, ThatDoNotExistAreNoAddress) {
  Client client;
  char address[31] = "untouched";
  for (const char* name : {"no-such-name.invalid", "@localhost", "localhost@", ""}) {
    EXPECT_EQ(client.LookUpAddress(name, address, sizeof address), kNetLookupFailed) << name;
  }
  EXPECT_STREQ(address, "untouched");
  EXPECT_EQ(client.Connect(9, "no-such-name.invalid", 5), kNetBadAddress);
  EXPECT_EQ(client.Connect(9, std::string(5000, 'x').c_str(), 5), kNetBadAddress);
  EXPECT_EQ(client.Connect(9, nullptr, 5), kNetBadAddress);
  EXPECT_TRUE(client.HasSeen(kNetLookupFailed)) << "the cause passes the hook, too";
}

TEST(Names, NeedRoomForTheirAddress) {
  Client client;
  char address[11] = "untouched";
  EXPECT_EQ(client.LookUpAddress("localhost", address, std::strlen(kLoopback)), kNetBufferTooShort);
  EXPECT_STREQ(address, "untouched");
  EXPECT_EQ(client.LookUpAddress("localhost", address, std::strlen(kLoopback) + 1), kNetSuccess);
  EXPECT_STREQ(address, kLoopback);
}

TEST(BoundConnecting, ComesFromItsLocalPort) {
  const TestListener listener;
  Client client;
  std::uint16_t local = 0;
  int connected = kNetNotBound;
  // Others may take the port that is free.
  for (int i = 0; i < 20 && connected == kNetNotBound; ++i) {
    local = TestListener().Port();
    connected = client.ConnectBound(local, listener.Port(), kLoopback, kLoopback);
  }
  ASSERT_EQ(connected, kNetSuccess);
  EXPECT_EQ(client.GetLocalPort(), local);
  EXPECT_EQ(client.GetRemotePort(), listener.Port());
  EXPECT_STREQ(client.GetRemoteAddress(), kLoopback);
  EXPECT_TRUE(client.greeted.empty());
  TestSocket peer = listener.Accept();
  EXPECT_EQ(client.Send("x"), 1);
  EXPECT_EQ(peer.Hear(1), "x");
}

TEST(BoundConnecting, TellsWhatIsTaken) {
  const TestListener listener;
  Client client;
  EXPECT_EQ(client.ConnectBound(listener.Port(), listener.Port(), kLoopback, kLoopback), kNetNotBound);
  const RefusingPort nobody;
  EXPECT_EQ(client.ConnectBound(0, nobody.Port(), nullptr, kLoopback), kNetNotConnected);
  EXPECT_EQ(client.ConnectBound(0, listener.Port(), nullptr, nullptr), kNetBadAddress);
  EXPECT_EQ(client.ConnectBound(0, 1, kLoopback, std::string(1000, '1').c_str()), kNetNotConnected);
  EXPECT_EQ(client.closed, 3) << "nothing stays open";
}

TEST(Listening, TakesOneConnectionAfterTheOther) {
  Client client;
  ASSERT_EQ(client.Listen(0), kNetSuccess);
  const std::uint16_t port = client.GetListeningPort();
  EXPECT_NE(port, 0);
  EXPECT_EQ(client.WaitForAccept(0), 1);
  TestSocket first = ConnectToLoopback(port);
  EXPECT_EQ(client.WaitForAccept(5), 0);
  ASSERT_EQ(client.AcceptConnection(), kNetSuccess);
  EXPECT_EQ(client.GetRemotePort(), first.LocalPort());
  EXPECT_EQ(client.GetLocalPort(), port);
  EXPECT_STREQ(client.GetRemoteAddress(), kLoopback);
  EXPECT_EQ(client.greeted, kLoopback);
  EXPECT_EQ(client.Send("one"), 3);
  EXPECT_EQ(first.Hear(3), "one");

  TestSocket second = ConnectToLoopback(port);
  ASSERT_EQ(client.AcceptConnection(), kNetSuccess);
  EXPECT_TRUE(first.IsLeftByPeer()) << "the first one is closed";
  EXPECT_EQ(client.Send("two"), 3);
  EXPECT_EQ(second.Hear(3), "two");
}

TEST(Listening, RefusesASecondPortAndATakenOne) {
  Client client;
  ASSERT_EQ(client.Listen(0), kNetSuccess);
  EXPECT_EQ(client.Listen(0), kNetSocketAlreadyOpen);
  Client other;
  EXPECT_EQ(other.Listen(client.GetListeningPort()), kNetNotBound);
  EXPECT_EQ(other.closed, 1);
  EXPECT_EQ(other.Listen(0, 1, kInternetFamily, ParseDottedAddress("192.0.2.1")), kNetNotBound)
      << "not our address";
}

TEST(Listening, FailsOnASocketThatCannot) {
  Client client;
  client.createsDatagram = true;
  EXPECT_EQ(client.Listen(0), kNetListenFailed);
  EXPECT_EQ(client.closed, 1);
  EXPECT_EQ(client.GetListeningPort(), 0);
  client.createsDatagram = false;
  EXPECT_EQ(client.Listen(0), kNetSuccess) << "and can be tried again";
}

TEST(Listening, IsUndoneByWhatTheGreetingSays) {
  Client client;
  client.greetingResult = kNetAborted;
  ASSERT_EQ(client.Listen(0), kNetSuccess);
  TestSocket peer = ConnectToLoopback(client.GetListeningPort());
  EXPECT_EQ(client.AcceptConnection(), kNetAborted);
  EXPECT_TRUE(peer.IsLeftByPeer());
}

TEST(Listening, AcceptsNothingWithoutAPort) {
  Client client;
  EXPECT_EQ(client.AcceptConnection(), kNetFailed);
  EXPECT_EQ(client.WaitForAccept(0), 1);
}

}  // namespace
