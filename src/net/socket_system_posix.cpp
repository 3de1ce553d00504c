#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <iterator>

#include "net/socket_system.h"

static_assert(kInternetFamily == AF_INET && kStreamSocket == SOCK_STREAM && kDatagramSocket == SOCK_DGRAM);
static_assert(kPeekFlag == MSG_PEEK && kShutDownSending == SHUT_WR && kShutDownBoth == SHUT_RDWR);
static_assert(kAnyIp == INADDR_ANY && kNoIp == INADDR_NONE);

namespace {

// Of the numbers with one meaning, the first is the one to set.
constexpr struct {
  int number;
  SocketError meaning;
} kErrors[] = {
    {0, SocketError::kNone},
    {EWOULDBLOCK, SocketError::kWouldBlock},
    {EINPROGRESS, SocketError::kInProgress},
    {EINTR, SocketError::kInterrupted},
    {EFAULT, SocketError::kBadPointer},
    {EINVAL, SocketError::kBadArgument},
    {ENOTSOCK, SocketError::kNotASocket},
    {EBADF, SocketError::kNotASocket},
    {EMSGSIZE, SocketError::kMessageTooLong},
    {EOPNOTSUPP, SocketError::kNotSupported},
    {ENETDOWN, SocketError::kNetworkDown},
    {ENETRESET, SocketError::kNetworkReset},
    {ECONNABORTED, SocketError::kConnectionAborted},
    {ECONNRESET, SocketError::kConnectionReset},
    {EPIPE, SocketError::kConnectionReset},
    {EISCONN, SocketError::kAlreadyConnected},
    {ENOTCONN, SocketError::kNotConnected},
    {ESHUTDOWN, SocketError::kShutDown},
    {ETIMEDOUT, SocketError::kTimedOut},
    {ECONNREFUSED, SocketError::kRefused},
    {ENOSYS, SocketError::kNotStarted},
};

int AsFile(SocketHandle socket) {
  return static_cast<int>(socket);
}

sockaddr_in Record(const SocketAddress& address) {
  sockaddr_in record = {};
  record.sin_family = static_cast<sa_family_t>(address.family);
  record.sin_addr.s_addr = address.ip;
  record.sin_port = htons(address.port);
  return record;
}

SocketAddress AddressIn(const sockaddr_in& record) {
  return {record.sin_family, record.sin_addr.s_addr, ntohs(record.sin_port)};
}

const sockaddr* Generic(const sockaddr_in& record) {
  return reinterpret_cast<const sockaddr*>(&record);
}

sockaddr* Generic(sockaddr_in& record) {
  return reinterpret_cast<sockaddr*>(&record);
}

// call until no signal interrupts it. A socket that blocks has timed out where this system says that it
// would block.
template <class Call>
int Moved(SocketHandle socket, Call call) {
  ssize_t moved = 0;
  do moved = call();
  while (moved == -1 && errno == EINTR);
  if (moved == -1 && errno == EWOULDBLOCK && (fcntl(AsFile(socket), F_GETFL) & O_NONBLOCK) == 0) {
    errno = ETIMEDOUT;
  }
  return static_cast<int>(moved);
}

}  // namespace

int StartSockets() {
  return 0x101;
}

void StopSockets() {}

SocketError LastSocketError() {
  return MeaningOfSystemError(errno);
}

void SetLastSocketError(SocketError error) {
  const auto* const known = std::find_if(std::begin(kErrors), std::end(kErrors),
                                         [error](const auto& entry) { return entry.meaning == error; });
  errno = known != std::end(kErrors) ? known->number : EACCES;  // any other
}

SocketError MeaningOfSystemError(int number) {
  for (const auto& known : kErrors) {
    if (known.number == number) return known.meaning;
  }
  return SocketError::kOther;
}

// Windows gives a port away as soon as its connections have ended, and this system only when told so.
SocketHandle OpenSystemSocket(int family, int type, int protocol) {
  const int opened = socket(family, type | SOCK_CLOEXEC, protocol);
  const int reuse = 1;
  if (opened != -1 && type == SOCK_STREAM) {
    setsockopt(opened, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
  }
  return opened;
}

int CloseSystemSocket(SocketHandle socket) {
  return close(AsFile(socket));
}

int ShutDownSystemSocket(SocketHandle socket, int how) {
  return shutdown(AsFile(socket), how);
}

int ConnectSystemSocket(SocketHandle socket, const SocketAddress& remote) {
  const sockaddr_in record = Record(remote);
  const int result = connect(AsFile(socket), Generic(record), sizeof record);
  if (result == -1 && errno == EINPROGRESS) errno = EWOULDBLOCK;
  return result;
}

int BindSystemSocket(SocketHandle socket, const SocketAddress& local) {
  const sockaddr_in record = Record(local);
  return bind(AsFile(socket), Generic(record), sizeof record);
}

int ListenOnSystemSocket(SocketHandle socket, int backlog) {
  return listen(AsFile(socket), backlog);
}

SocketHandle AcceptSystemSocket(SocketHandle listening, SocketAddress& peer) {
  sockaddr_in record = {};
  socklen_t size = sizeof record;
  const int accepted =
      Moved(listening, [&] { return accept4(AsFile(listening), Generic(record), &size, SOCK_CLOEXEC); });
  peer = AddressIn(record);
  return accepted;
}

SocketAddress LocalEndOfSystemSocket(SocketHandle socket) {
  sockaddr_in record = {};
  socklen_t size = sizeof record;
  return getsockname(AsFile(socket), Generic(record), &size) == 0 ? AddressIn(record) : SocketAddress();
}

// A peer that has gone is a failure, and not a signal that ends the program.
int SendOnSystemSocket(SocketHandle socket, const char* buffer, int length, int flags) {
  return Moved(socket, [&] {
    return send(AsFile(socket), buffer, static_cast<size_t>(length), flags | MSG_NOSIGNAL);
  });
}

int ReceiveOnSystemSocket(SocketHandle socket, char* buffer, int length, int flags) {
  return Moved(socket, [&] { return recv(AsFile(socket), buffer, static_cast<size_t>(length), flags); });
}

int SendDatagramTo(SocketHandle socket, const char* buffer, int length, const SocketAddress& remote) {
  const sockaddr_in record = Record(remote);
  return Moved(socket, [&] {
    return sendto(AsFile(socket), buffer, static_cast<size_t>(length), MSG_NOSIGNAL, Generic(record),
                  sizeof record);
  });
}

int ReceiveDatagramFrom(SocketHandle socket, char* buffer, int length, SocketAddress& remote) {
  sockaddr_in record = {};
  socklen_t size = sizeof record;
  const int sent = Moved(socket, [&] {
    return recvfrom(AsFile(socket), buffer, static_cast<size_t>(length), MSG_TRUNC, Generic(record), &size);
  });
  remote = AddressIn(record);
  if (sent <= length) return sent;
  errno = EMSGSIZE;
  return -1;
}

int SetSystemSocketTimeout(SocketHandle socket, SocketDirection direction, std::int32_t milliseconds) {
  const int option = direction == SocketDirection::kReceive ? SO_RCVTIMEO : SO_SNDTIMEO;
  const timeval time = {milliseconds / 1000, static_cast<suseconds_t>(milliseconds % 1000) * 1000};
  return setsockopt(AsFile(socket), SOL_SOCKET, option, &time, sizeof time);
}

int SetSystemSocketBlocking(SocketHandle socket, bool blocks) {
  int nonBlocking = blocks ? 0 : 1;
  return ioctl(AsFile(socket), FIONBIO, &nonBlocking);
}

std::uint32_t PendingBytesOf(SocketHandle socket) {
  int pending = 0;
  return ioctl(AsFile(socket), FIONREAD, &pending) == 0 ? static_cast<std::uint32_t>(pending) : 0;
}

// A connection that is refused makes its socket writable here, but shows as an error, too.
SocketWait WaitForSystemSocket(SocketHandle socket, SocketEvent event, long long microseconds) {
  if (socket == kNoSocket || microseconds < 0) {
    errno = socket == kNoSocket ? ENOTSOCK : EINVAL;
    return SocketWait::kNever;
  }
  const bool isWrite = event == SocketEvent::kWritable;
  pollfd asked = {AsFile(socket), static_cast<short>(isWrite ? POLLOUT : POLLIN), 0};
  const std::uint64_t end = SystemTicks() + static_cast<std::uint64_t>((microseconds + 999) / 1000);
  int ready = 0;
  do {
    const std::uint64_t now = SystemTicks();
    ready = poll(&asked, 1, now < end ? static_cast<int>(std::min<std::uint64_t>(end - now, INT_MAX)) : 0);
  } while (ready == -1 && errno == EINTR);
  if (ready == 0) return SocketWait::kNotYet;
  if (ready == -1) return SocketWait::kNever;
  if ((asked.revents & POLLNVAL) != 0) errno = ENOTSOCK;
  const int failures = isWrite ? POLLNVAL | POLLERR | POLLHUP : POLLNVAL;
  return (asked.revents & failures) == 0 ? SocketWait::kCame : SocketWait::kNever;
}

std::uint32_t ParseDottedAddress(const char* text) {
  return inet_addr(text);
}

std::string DottedAddress(std::uint32_t ip) {
  char text[INET_ADDRSTRLEN] = "";
  inet_ntop(AF_INET, &ip, text, sizeof text);
  return text;
}

std::uint32_t LookUpName(const char* name) {
  addrinfo wanted = {};
  wanted.ai_family = AF_INET;
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (getaddrinfo(name, nullptr, &wanted, &found) != 0) return kNoIp;
  const std::uint32_t ip = reinterpret_cast<const sockaddr_in*>(found->ai_addr)->sin_addr.s_addr;
  freeaddrinfo(found);
  return ip;
}

std::uint64_t SystemTicks() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}
