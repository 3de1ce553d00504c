#include "host_channel.h"

#include <cstdint>

namespace bridge {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::uint32_t kLongestPayload = 1 << 20;
constexpr std::size_t kHeaderSize = 5;

// A stranger who connects and says nothing must not use up the agent's time.
constexpr milliseconds kTokenTimeout{2000};

bool SendAll(SOCKET socket, std::string_view data) {
  while (!data.empty()) {
    const int sent = send(socket, data.data(), static_cast<int>(data.size()), 0);
    if (sent <= 0) {
      return false;
    }
    data.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

bool ReceiveAll(SOCKET socket, char* data, std::size_t size) {
  while (size > 0) {
    const int received = recv(socket, data, static_cast<int>(size), 0);
    if (received <= 0) {
      return false;
    }
    data += received;
    size -= static_cast<std::size_t>(received);
  }
  return true;
}

bool SetReceiveTimeout(SOCKET socket, DWORD timeout_ms) {
  return setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&timeout_ms),
                    sizeof timeout_ms) == 0;
}

bool SaysToken(SOCKET socket, std::string_view token) {
  std::string said(token.size(), '\0');
  return SetReceiveTimeout(socket, static_cast<DWORD>(kTokenTimeout.count())) &&
         ReceiveAll(socket, said.data(), said.size()) && said == token && SetReceiveTimeout(socket, 0);
}

bool IsReadable(SOCKET socket, milliseconds timeout) {
  fd_set sockets;
  FD_ZERO(&sockets);
  sockets.fd_array[0] = socket;
  sockets.fd_count = 1;
  timeval wait{static_cast<long>(timeout.count() / 1000), static_cast<long>(timeout.count() % 1000 * 1000)};
  return select(0, &sockets, nullptr, nullptr, &wait) == 1;
}

}  // namespace

HostChannel::Winsock::Winsock() {
  WSADATA data;
  started = WSAStartup(MAKEWORD(2, 2), &data) == 0;
}

HostChannel::Winsock::~Winsock() {
  if (started) {
    WSACleanup();
  }
}

HostChannel::HostChannel() = default;
HostChannel::~HostChannel() = default;

bool HostChannel::Listen() {
  listener_ = Socket(WSASocketW(AF_INET, SOCK_STREAM, IPPROTO_TCP, nullptr, 0,
                                WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return listener_ && bind(listener_.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
         listen(listener_.Get(), SOMAXCONN) == 0;
}

unsigned short HostChannel::Port() const {
  sockaddr_in address{};
  int size = sizeof address;
  getsockname(listener_.Get(), reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

bool HostChannel::AwaitAgent(std::string_view token, milliseconds timeout) {
  const Clock::time_point deadline = Clock::now() + timeout;
  while (!agent_ && Clock::now() < deadline) {
    const auto left = std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
    if (!IsReadable(listener_.Get(), left)) {
      continue;
    }
    Socket caller(accept(listener_.Get(), nullptr, nullptr));
    if (caller && SaysToken(caller.Get(), token)) {
      agent_ = std::move(caller);
    }
  }
  listener_ = Socket();
  return static_cast<bool>(agent_);
}

bool HostChannel::Send(FrameKind kind, std::string_view payload) {
  const auto size = static_cast<std::uint32_t>(payload.size());
  std::string frame{static_cast<char>(kind)};
  for (int shift = 0; shift < 32; shift += 8) {
    frame += static_cast<char>(size >> shift & 0xFF);
  }
  return SendAll(agent_.Get(), frame.append(payload));
}

bool HostChannel::Receive(Frame& frame) {
  char header[kHeaderSize];
  if (!ReceiveAll(agent_.Get(), header, sizeof header)) {
    return false;
  }
  std::uint32_t size = 0;
  for (std::size_t i = kHeaderSize - 1; i > 0; --i) {
    size = size << 8 | static_cast<unsigned char>(header[i]);
  }
  if (size > kLongestPayload) {
    return false;
  }
  frame.kind = static_cast<FrameKind>(header[0]);
  frame.payload.resize(size);
  return ReceiveAll(agent_.Get(), frame.payload.data(), size);
}

}  // namespace bridge
