// What the clients need of the operating system: sockets, and a clock for their waits.
// socket_system_windows.cpp and socket_system_posix.cpp implement it. Where the systems differ both do what
// Windows does, so that nobody above needs to know which one it is.
//
// Handles are numbers, because no header of this room reads the system's own: those define macros with
// common names. Nothing here owns a socket: what OpenSystemSocket and AcceptSystemSocket return is to be
// closed. Any thread; a socket is one thread's at a time.
//
// Unless said otherwise a result is 0, or -1 for a failure, and then LastSocketError tells why.
#ifndef MOSAICON_NET_SOCKET_SYSTEM_H_
#define MOSAICON_NET_SOCKET_SYSTEM_H_

#include <cstdint>
#include <string>

using SocketHandle = std::intptr_t;
inline constexpr SocketHandle kNoSocket = -1;

// Numbers that mean the same to every system.
inline constexpr int kInternetFamily = 2;
inline constexpr int kStreamSocket = 1, kDatagramSocket = 2;
inline constexpr int kPeekFlag = 2;  // for receiving
inline constexpr int kShutDownSending = 1, kShutDownBoth = 2;

// IP addresses are numbers in network order.
inline constexpr std::uint32_t kAnyIp = 0, kNoIp = 0xFFFFFFFF;

struct SocketAddress {
  int family = kInternetFamily;
  std::uint32_t ip = kAnyIp;
  std::uint16_t port = 0;  // in host order
};

enum class SocketError {
  kNone,
  kWouldBlock,
  kInProgress,
  kInterrupted,
  kBadPointer,
  kBadArgument,
  kNotASocket,
  kMessageTooLong,
  kNotSupported,
  kNetworkDown,
  kNetworkReset,
  kConnectionAborted,
  kConnectionReset,
  kAlreadyConnected,
  kNotConnected,
  kShutDown,
  kTimedOut,
  kRefused,
  kNotStarted,  // sockets as such
  kOther,
};

// The version of Windows Sockets that was agreed on, 0x101, which every system has; 0 when sockets cannot
// be used. The system counts: every start that succeeds needs one stop.
int StartSockets();
void StopSockets();

// Of the calling thread's last call that failed. Whoever stands in for a call that fails sets it.
SocketError LastSocketError();
void SetLastSocketError(SocketError error);
// What a number of the system's own means.
SocketError MeaningOfSystemError(int number);

// The socket, or kNoSocket.
SocketHandle OpenSystemSocket(int family, int type, int protocol);
int CloseSystemSocket(SocketHandle socket);
int ShutDownSystemSocket(SocketHandle socket, int how);

// On a socket that does not block: kWouldBlock, and the socket becomes writable once it is connected.
int ConnectSystemSocket(SocketHandle socket, const SocketAddress& remote);
int BindSystemSocket(SocketHandle socket, const SocketAddress& local);
int ListenOnSystemSocket(SocketHandle socket, int backlog);
// The connection, or kNoSocket.
SocketHandle AcceptSystemSocket(SocketHandle listening, SocketAddress& peer);
// Port 0 when it has none.
SocketAddress LocalEndOfSystemSocket(SocketHandle socket);

// The number of bytes, or -1; receiving, 0 is the end. A datagram that does not fit is a failure.
int SendOnSystemSocket(SocketHandle socket, const char* buffer, int length, int flags);
int ReceiveOnSystemSocket(SocketHandle socket, char* buffer, int length, int flags);
int SendDatagramTo(SocketHandle socket, const char* buffer, int length, const SocketAddress& remote);
int ReceiveDatagramFrom(SocketHandle socket, char* buffer, int length, SocketAddress& remote);

enum class SocketDirection { kReceive, kSend };

// How long a call on a socket that blocks may take: kTimedOut. 0: for ever.
int SetSystemSocketTimeout(SocketHandle socket, SocketDirection direction, std::int32_t milliseconds);
int SetSystemSocketBlocking(SocketHandle socket, bool blocks);

// How many bytes have arrived that nobody has received; 0 also where that cannot be told.
std::uint32_t PendingBytesOf(SocketHandle socket);

enum class SocketEvent { kReadable, kWritable };

// kNever: there is no such socket, or the connection that was to make it writable is refused.
enum class SocketWait { kCame, kNotYet, kNever };

SocketWait WaitForSystemSocket(SocketHandle socket, SocketEvent event, long long microseconds);

// kNoIp for what is no dotted address, and for 255.255.255.255.
std::uint32_t ParseDottedAddress(const char* text);
std::string DottedAddress(std::uint32_t ip);
// The first address of a name, or kNoIp.
std::uint32_t LookUpName(const char* name);

// Milliseconds from any moment on, whatever becomes of the time of day.
std::uint64_t SystemTicks();

#endif  // MOSAICON_NET_SOCKET_SYSTEM_H_
