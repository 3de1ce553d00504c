#include "net/socket_wait.h"

#include <algorithm>

#include "net/timeout_clock.h"
#include "net/wait_time.h"

namespace {

constexpr long long kSlice = 20000;  // microseconds
constexpr long long kMicroseconds = 1000000;

}  // namespace

bool WaitForSocket(SocketHandle socket, SocketEvent event, long seconds, long microseconds,
                   WaitListener* listener) {
  // Most of the time there is something already, and asking for that is much cheaper than a wait.
  if (event == SocketEvent::kReadable && PendingBytesOf(socket) > 0) return true;
  const long long whole = seconds * kMicroseconds + microseconds;
  WaitTime& time = CurrentWaitTime();
  if (listener == nullptr || seconds < 0) return time.WaitFor(socket, event, whole) == SocketWait::kCame;
  const std::uint64_t start = TimeoutClock();
  for (long long left = whole;;) {
    const SocketWait waited = time.WaitFor(socket, event, std::min(left, kSlice));
    if (waited != SocketWait::kNotYet) return waited == SocketWait::kCame;
    left = whole - static_cast<long long>(TimeoutClock() - start) * 1000;
    if (left <= 0 || !listener->OnWait()) return false;
  }
}
