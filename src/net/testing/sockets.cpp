#include "net/testing/sockets.h"

namespace {

constexpr DWORD kPatience = 20000;  // milliseconds

sockaddr_in Loopback(std::uint16_t port, const std::string& name = "127.0.0.1") {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = inet_addr(name.c_str());
  address.sin_port = htons(port);
  return address;
}

SOCKET NewSocket() {
  NeedWinsock();
  return socket(AF_INET, SOCK_STREAM, 0);
}

}  // namespace

void NeedWinsock() {
  static WSADATA record;
  static const bool started = StartWinsock(record);
  (void)started;
}

TestSocket::TestSocket(SOCKET socket) : m_socket(socket) {
  setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&kPatience), sizeof kPatience);
  setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, reinterpret_cast<const char*>(&kPatience), sizeof kPatience);
}

void TestSocket::Close() {
  if (IsOpen()) closesocket(std::exchange(m_socket, INVALID_SOCKET));
}

void TestSocket::Reset() {
  const linger hard = {1, 0};
  setsockopt(m_socket, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&hard), sizeof hard);
  Close();
}

void TestSocket::CloseForSending() {
  shutdown(m_socket, SD_SEND);
}

bool TestSocket::Say(const std::string& bytes) const {
  size_t said = 0;
  while (said < bytes.size()) {
    const int now = send(m_socket, bytes.data() + said, static_cast<int>(bytes.size() - said), 0);
    if (now < 1) return false;
    said += static_cast<size_t>(now);
  }
  return true;
}

std::string TestSocket::Hear(size_t count) const {
  std::string bytes(count, '\0');
  size_t heard = 0;
  while (heard < count) {
    const int now = recv(m_socket, bytes.data() + heard, static_cast<int>(count - heard), 0);
    if (now < 1) break;
    heard += static_cast<size_t>(now);
  }
  bytes.resize(heard);
  return bytes;
}

std::string TestSocket::HearLine() const {
  std::string line;
  while (line.empty() || line.back() != '\n') {
    const std::string byte = Hear(1);
    if (byte.empty()) break;
    line += byte;
  }
  return line;
}

std::string TestSocket::HearToEnd() const {
  std::string bytes;
  char chunk[4096];
  for (int now; (now = recv(m_socket, chunk, sizeof chunk, 0)) > 0;)
    bytes.append(chunk, static_cast<size_t>(now));
  return bytes;
}

bool TestSocket::IsLeftByPeer() const {
  char chunk[4096];
  int now = 1;
  while (now > 0) now = recv(m_socket, chunk, sizeof chunk, 0);
  return now == 0 || WSAGetLastError() != WSAETIMEDOUT;
}

std::uint16_t TestSocket::LocalPort() const {
  sockaddr_in address = {};
  int size = sizeof address;
  getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

TestListener::TestListener(int backlog, const std::string& address) : m_socket(NewSocket()) {
  const sockaddr_in end = Loopback(0, address);
  bind(m_socket.Get(), reinterpret_cast<const sockaddr*>(&end), sizeof end);
  listen(m_socket.Get(), backlog);
}

bool TestListener::WaitForPeer(long milliseconds) const {
  fd_set sockets;
  FD_ZERO(&sockets);
  FD_SET(m_socket.Get(), &sockets);
  timeval time = {milliseconds / 1000, milliseconds % 1000 * 1000};
  return select(0, &sockets, nullptr, nullptr, &time) == 1;
}

TestSocket TestListener::Accept() const {
  if (!WaitForPeer(kPatience)) return TestSocket();
  return TestSocket(accept(m_socket.Get(), nullptr, nullptr));
}

TestSocket ConnectToLoopback(std::uint16_t port, const std::string& from) {
  TestSocket client(NewSocket());
  const sockaddr_in own = Loopback(0, from);
  bind(client.Get(), reinterpret_cast<const sockaddr*>(&own), sizeof own);
  const sockaddr_in address = Loopback(port);
  if (connect(client.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) client.Close();
  return client;
}

std::uint16_t UnusedPort() {
  return TestListener().Port();
}
