#include "net/testing/sockets.h"

#include <chrono>
#include <thread>

#include "net/testing/socket_options.h"

namespace {

constexpr std::int32_t kPatience = 180000;  // milliseconds

thread_local HearingMark* hearingMark = nullptr;

class Hearing {
 public:
  explicit Hearing(SocketHandle socket) {
    if (hearingMark != nullptr) *hearingMark = socket;
  }
  ~Hearing() {
    if (hearingMark != nullptr) *hearingMark = kNoSocket;
  }
  Hearing(const Hearing&) = delete;
  Hearing& operator=(const Hearing&) = delete;
};

SocketAddress Loopback(std::uint16_t port, const std::string& name = "127.0.0.1") {
  return {kInternetFamily, ParseDottedAddress(name.c_str()), port};
}

TestSocket BoundSocket(const std::string& address) {
  NeedSockets();
  TestSocket socket(OpenSystemSocket(kInternetFamily, kStreamSocket, 0));
  BindSystemSocket(socket.Get(), Loopback(0, address));
  return socket;
}

}  // namespace

void NeedSockets() {
  static const int started = StartSockets();
  (void)started;
}

void SetHearingMark(HearingMark* mark) {
  hearingMark = mark;
}

void SleepFor(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

TestSocket::TestSocket(SocketHandle socket) : m_socket(socket) {
  SetSystemSocketTimeout(m_socket, SocketDirection::kReceive, kPatience);
  SetSystemSocketTimeout(m_socket, SocketDirection::kSend, kPatience);
  SendAtOnce(m_socket);
}

void TestSocket::Close() {
  if (IsOpen()) CloseSystemSocket(std::exchange(m_socket, kNoSocket));
}

void TestSocket::Reset() {
  BreakOnClose(m_socket);
  Close();
}

void TestSocket::CloseForSending() {
  ShutDownSystemSocket(m_socket, kShutDownSending);
}

bool TestSocket::Say(const std::string& bytes) const {
  size_t said = 0;
  while (said < bytes.size()) {
    const int now =
        SendOnSystemSocket(m_socket, bytes.data() + said, static_cast<int>(bytes.size() - said), 0);
    if (now < 1) return false;
    said += static_cast<size_t>(now);
  }
  return true;
}

int TestSocket::Receive(char* buffer, size_t count) const {
  const Hearing hearing(m_socket);
  return ReceiveOnSystemSocket(m_socket, buffer, static_cast<int>(count), 0);
}

std::string TestSocket::Hear(size_t count) const {
  std::string bytes(count, '\0');
  size_t heard = 0;
  while (heard < count) {
    const int now = Receive(bytes.data() + heard, count - heard);
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
  char chunk[65536];
  for (int now; (now = Receive(chunk, sizeof chunk)) > 0;) bytes.append(chunk, static_cast<size_t>(now));
  return bytes;
}

bool TestSocket::IsLeftByPeer() const {
  char chunk[65536];
  int now = 1;
  while (now > 0) now = Receive(chunk, sizeof chunk);
  return now == 0 || LastSocketError() != SocketError::kTimedOut;
}

std::uint16_t TestSocket::LocalPort() const {
  return LocalEndOfSystemSocket(m_socket).port;
}

TestListener::TestListener(int backlog, const std::string& address) : m_socket(BoundSocket(address)) {
  ListenOnSystemSocket(m_socket.Get(), backlog);
}

TestSocket TestListener::Accept() const {
  const Hearing hearing(Get());
  if (WaitForSystemSocket(Get(), SocketEvent::kReadable, kPatience * 1000LL) != SocketWait::kCame) return {};
  SocketAddress peer;
  return TestSocket(AcceptSystemSocket(Get(), peer));
}

RefusingPort::RefusingPort() : m_socket(BoundSocket("127.0.0.1")) {}

TestSocket ConnectToLoopback(std::uint16_t port, const std::string& from) {
  TestSocket client = BoundSocket(from);
  if (ConnectSystemSocket(client.Get(), Loopback(port)) != 0) client.Close();
  return client;
}
