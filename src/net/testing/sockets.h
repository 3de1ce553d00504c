// Plain sockets on the loopback network for the other end of a client under test: they close themselves, and
// every wait of theirs ends after 20 seconds. Failures are left to the test that looks at the results. Test
// code.
#ifndef MOSAICON_NET_TESTING_SOCKETS_H_
#define MOSAICON_NET_TESTING_SOCKETS_H_

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>

#include "net/socket_system.h"

// Where a thread tells on which socket of its own it waits for the client, and kNoSocket when it does not.
using HearingMark = std::atomic<SocketHandle>;

// For the calling thread. Borrowed.
void SetHearingMark(HearingMark* mark);

class TestSocket {
 public:
  TestSocket() = default;
  explicit TestSocket(SocketHandle socket);
  TestSocket(TestSocket&& other) noexcept : m_socket(std::exchange(other.m_socket, kNoSocket)) {}
  TestSocket& operator=(TestSocket&& other) noexcept {
    std::swap(m_socket, other.m_socket);
    return *this;
  }
  ~TestSocket() { Close(); }

  SocketHandle Get() const { return m_socket; }
  bool IsOpen() const { return m_socket != kNoSocket; }
  void Close();
  // Breaks the connection: the peer's calls fail instead of seeing its end.
  void Reset();
  void CloseForSending();

  // False when not all of it could be sent.
  bool Say(const std::string& bytes) const;
  // What comes until there are count bytes, the peer closes, or nothing more comes in time.
  std::string Hear(size_t count) const;
  std::string HearLine() const;
  std::string HearToEnd() const;
  // False when the peer neither closes nor resets the connection in time.
  bool IsLeftByPeer() const;

  std::uint16_t LocalPort() const;

 private:
  int Receive(char* buffer, size_t count) const;

  SocketHandle m_socket = kNoSocket;
};

class TestListener {
 public:
  // On a port that the system chooses.
  explicit TestListener(int backlog = 8, const std::string& address = "127.0.0.1");

  std::uint16_t Port() const { return m_socket.LocalPort(); }
  SocketHandle Get() const { return m_socket.Get(); }
  // Not open when nobody comes in time.
  TestSocket Accept() const;
  void Close() { m_socket.Close(); }

 private:
  TestSocket m_socket;
};

// A port on which nobody listens, and nobody else can: a connection to it is refused.
class RefusingPort {
 public:
  RefusingPort();

  std::uint16_t Port() const { return m_socket.LocalPort(); }

 private:
  TestSocket m_socket;
};

// Not open when it is refused. from is another address of the loopback network.
TestSocket ConnectToLoopback(std::uint16_t port, const std::string& from = "127.0.0.1");

// Sockets for the test's own calls, from first use to the end of the program.
void NeedSockets();

void SleepFor(int milliseconds);

#endif  // MOSAICON_NET_TESTING_SOCKETS_H_
