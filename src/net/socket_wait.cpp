#include "net/socket_wait.h"

#include <algorithm>

#include "net/timeout_clock.h"

namespace {

constexpr long long kSlice = 20000;  // microseconds
constexpr long long kMicroseconds = 1000000;

enum class Waited { kCame, kNotYet, kNever };

fd_set SetOf(SOCKET socket) {
  fd_set sockets;
  FD_ZERO(&sockets);
  FD_SET(socket, &sockets);
  return sockets;
}

// A connection that is refused never makes its socket writable: that shows in the third set.
Waited WaitOnce(SOCKET socket, SocketEvent event, long seconds, long microseconds) {
  const bool isWrite = event == SocketEvent::kWritable;
  fd_set wanted = SetOf(socket);
  fd_set failed = SetOf(socket);
  timeval time = {seconds, microseconds};
  const int ready =
      select(0, isWrite ? nullptr : &wanted, isWrite ? &wanted : nullptr, isWrite ? &failed : nullptr, &time);
  if (ready == 0) return Waited::kNotYet;
  return ready > 0 && FD_ISSET(socket, &wanted) ? Waited::kCame : Waited::kNever;
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
  if (listener == nullptr || seconds < 0)
    return WaitOnce(socket, event, seconds, microseconds) == Waited::kCame;
  const ULONGLONG start = TimeoutClock();
  const long long whole = seconds * kMicroseconds + microseconds;
  for (long long left = whole;;) {
    const Waited waited = WaitOnce(socket, event, 0, static_cast<long>(std::min(left, kSlice)));
    if (waited != Waited::kNotYet) return waited == Waited::kCame;
    left = whole - static_cast<long long>(TimeoutClock() - start) * 1000;
    if (left <= 0 || !listener->OnWait()) return false;
  }
}
