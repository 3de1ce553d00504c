#include "net/socket_wait.h"

#include <algorithm>

namespace {

constexpr long long kSlice = 20000;  // microseconds
constexpr long long kMicroseconds = 1000000;

bool WaitOnce(SOCKET socket, SocketEvent event, long seconds, long microseconds) {
  fd_set sockets;
  FD_ZERO(&sockets);
  FD_SET(socket, &sockets);
  timeval time = {seconds, microseconds};
  fd_set* const readable = event == SocketEvent::kReadable ? &sockets : nullptr;
  fd_set* const writable = event == SocketEvent::kWritable ? &sockets : nullptr;
  return select(0, readable, writable, nullptr, &time) == 1;
}

}  // namespace

bool HasPendingBytes(SOCKET socket) {
  u_long pending = 0;
  return ioctlsocket(socket, FIONREAD, &pending) == 0 && pending > 0;
}

bool WaitForSocket(SOCKET socket, SocketEvent event, long seconds, long microseconds,
                   WaitListener* listener) {
  // Most of the time there is something already, and asking for that is much cheaper than a select.
  if (event == SocketEvent::kReadable && HasPendingBytes(socket)) return true;
  if (listener == nullptr || seconds < 0) return WaitOnce(socket, event, seconds, microseconds);
  const ULONGLONG start = GetTickCount64();
  const long long whole = seconds * kMicroseconds + microseconds;
  for (long long left = whole;;) {
    if (WaitOnce(socket, event, 0, static_cast<long>(std::min(left, kSlice)))) return true;
    left = whole - static_cast<long long>(GetTickCount64() - start) * 1000;
    if (left <= 0 || !listener->OnWait()) return false;
  }
}
