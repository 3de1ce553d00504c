// After winsock2.h comes windows.h, and there is no other order.
#include <winsock2.h>

#include <windows.h>

#include <algorithm>
#include <iterator>

#include "net/socket_system.h"

static_assert(kInternetFamily == AF_INET && kStreamSocket == SOCK_STREAM && kDatagramSocket == SOCK_DGRAM);
static_assert(kPeekFlag == MSG_PEEK && kShutDownSending == SD_SEND && kShutDownBoth == SD_BOTH);
static_assert(kAnyIp == INADDR_ANY && kNoIp == INADDR_NONE);

namespace {

constexpr struct {
  int number;
  SocketError meaning;
} kErrors[] = {
    {0, SocketError::kNone},
    {WSAEWOULDBLOCK, SocketError::kWouldBlock},
    {WSAEINPROGRESS, SocketError::kInProgress},
    {WSAEINTR, SocketError::kInterrupted},
    {WSAEFAULT, SocketError::kBadPointer},
    {WSAEINVAL, SocketError::kBadArgument},
    {WSAENOTSOCK, SocketError::kNotASocket},
    {WSAEMSGSIZE, SocketError::kMessageTooLong},
    {WSAEOPNOTSUPP, SocketError::kNotSupported},
    {WSAENETDOWN, SocketError::kNetworkDown},
    {WSAENETRESET, SocketError::kNetworkReset},
    {WSAECONNABORTED, SocketError::kConnectionAborted},
    {WSAECONNRESET, SocketError::kConnectionReset},
    {WSAEISCONN, SocketError::kAlreadyConnected},
    {WSAENOTCONN, SocketError::kNotConnected},
    {WSAESHUTDOWN, SocketError::kShutDown},
    {WSAETIMEDOUT, SocketError::kTimedOut},
    {WSAECONNREFUSED, SocketError::kRefused},
    {WSANOTINITIALISED, SocketError::kNotStarted},
};

SOCKET AsSocket(SocketHandle socket) {
  return static_cast<SOCKET>(socket);
}

sockaddr_in Record(const SocketAddress& address) {
  sockaddr_in record = {};
  record.sin_family = static_cast<short>(address.family);
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

fd_set SetOf(SocketHandle socket) {
  fd_set sockets;
  FD_ZERO(&sockets);
  FD_SET(AsSocket(socket), &sockets);
  return sockets;
}

}  // namespace

SocketError LastSocketError() {
  return MeaningOfSystemError(WSAGetLastError());
}

void SetLastSocketError(SocketError error) {
  const auto* const known = std::find_if(std::begin(kErrors), std::end(kErrors),
                                         [error](const auto& entry) { return entry.meaning == error; });
  WSASetLastError(known != std::end(kErrors) ? known->number : WSAEACCES);  // any other
}

SocketError MeaningOfSystemError(int number) {
  for (const auto& known : kErrors) {
    if (known.number == number) return known.meaning;
  }
  return SocketError::kOther;
}

SocketHandle OpenSystemSocket(int family, int type, int protocol) {
  return static_cast<SocketHandle>(socket(family, type, protocol));
}

int CloseSystemSocket(SocketHandle socket) {
  return closesocket(AsSocket(socket));
}

int ShutDownSystemSocket(SocketHandle socket, int how) {
  return shutdown(AsSocket(socket), how);
}

int ConnectSystemSocket(SocketHandle socket, const SocketAddress& remote) {
  const sockaddr_in record = Record(remote);
  return connect(AsSocket(socket), Generic(record), sizeof record);
}

int BindSystemSocket(SocketHandle socket, const SocketAddress& local) {
  const sockaddr_in record = Record(local);
  return bind(AsSocket(socket), Generic(record), sizeof record);
}

int ListenOnSystemSocket(SocketHandle socket, int backlog) {
  return listen(AsSocket(socket), backlog);
}

SocketHandle AcceptSystemSocket(SocketHandle listening, SocketAddress& peer) {
  sockaddr_in record = {};
  int size = sizeof record;
  const SOCKET accepted = accept(AsSocket(listening), Generic(record), &size);
  peer = AddressIn(record);
  return static_cast<SocketHandle>(accepted);
}

SocketAddress LocalEndOfSystemSocket(SocketHandle socket) {
  sockaddr_in record = {};
  int size = sizeof record;
  return getsockname(AsSocket(socket), Generic(record), &size) == 0 ? AddressIn(record) : SocketAddress();
}

int SendOnSystemSocket(SocketHandle socket, const char* buffer, int length, int flags) {
  return send(AsSocket(socket), buffer, length, flags);
}

int ReceiveOnSystemSocket(SocketHandle socket, char* buffer, int length, int flags) {
  return recv(AsSocket(socket), buffer, length, flags);
}

int SendDatagramTo(SocketHandle socket, const char* buffer, int length, const SocketAddress& remote) {
  const sockaddr_in record = Record(remote);
  return sendto(AsSocket(socket), buffer, length, 0, Generic(record), sizeof record);
}

int ReceiveDatagramFrom(SocketHandle socket, char* buffer, int length, SocketAddress& remote) {
  sockaddr_in record = {};
  int size = sizeof record;
  const int received = recvfrom(AsSocket(socket), buffer, length, 0, Generic(record), &size);
  remote = AddressIn(record);
  return received;
}

int SetSystemSocketTimeout(SocketHandle socket, SocketDirection direction, std::int32_t milliseconds) {
  const int option = direction == SocketDirection::kReceive ? SO_RCVTIMEO : SO_SNDTIMEO;
  return setsockopt(AsSocket(socket), SOL_SOCKET, option, reinterpret_cast<const char*>(&milliseconds),
                    sizeof milliseconds);
}

int SetSystemSocketBlocking(SocketHandle socket, bool blocks) {
  u_long nonBlocking = blocks ? 0 : 1;
  return ioctlsocket(AsSocket(socket), static_cast<long>(FIONBIO), &nonBlocking);
}

std::uint32_t PendingBytesOf(SocketHandle socket) {
  u_long pending = 0;
  return ioctlsocket(AsSocket(socket), FIONREAD, &pending) == 0 ? pending : 0;
}

// A connection that is refused never makes its socket writable: that shows in the third set.
SocketWait WaitForSystemSocket(SocketHandle socket, SocketEvent event, long long microseconds) {
  const bool isWrite = event == SocketEvent::kWritable;
  fd_set wanted = SetOf(socket);
  fd_set failed = SetOf(socket);
  timeval time = {static_cast<long>(microseconds / 1000000), static_cast<long>(microseconds % 1000000)};
  const int ready =
      select(0, isWrite ? nullptr : &wanted, isWrite ? &wanted : nullptr, isWrite ? &failed : nullptr, &time);
  if (ready == 0) return SocketWait::kNotYet;
  return ready > 0 && FD_ISSET(AsSocket(socket), &wanted) ? SocketWait::kCame : SocketWait::kNever;
}

std::uint32_t ParseDottedAddress(const char* text) {
  return inet_addr(text);
}

std::string DottedAddress(std::uint32_t ip) {
  in_addr address = {};
  address.s_addr = ip;
  const char* const text = inet_ntoa(address);
  return text != nullptr ? text : "";
}

std::uint32_t LookUpName(const char* name) {
  const hostent* const host = gethostbyname(name);
  if (host == nullptr || host->h_addr_list[0] == nullptr) return kNoIp;
  return reinterpret_cast<const in_addr*>(host->h_addr_list[0])->s_addr;
}

std::uint64_t SystemTicks() {
  return GetTickCount64();
}
