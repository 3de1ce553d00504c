// The raw calls on a socket, each of them open to a subclass: a test that fails on purpose, a
// connection that encrypts. Owns nothing. Results are those of socket_system.h unless said otherwise.
// Portable; one thread at a time.
#ifndef MOSAICON_NET_CUT_SOCKET_H_
#define MOSAICON_NET_CUT_SOCKET_H_

#include "net/socket_system.h"

class CUT_Socket {
 public:
  CUT_Socket() = default;
  CUT_Socket(const CUT_Socket&) = delete;
  CUT_Socket& operator=(const CUT_Socket&) = delete;

  // The order of the virtual functions is part of the interface.
  virtual ~CUT_Socket() = default;

  // Called after every successful connect or accept. An error code other than 0 closes the socket and
  // is the result of the operation.
  virtual int OnSocketConnected(SocketHandle socket, const char* remoteAddress);

  virtual int CloseSocketHandle(SocketHandle socket);
  virtual int ShutdownSocket(SocketHandle socket, int how);
  virtual int RecvRaw(SocketHandle socket, char* buffer, int length, int flags);
  virtual int SendRaw(SocketHandle socket, const char* buffer, int length, int flags);

  // True when bytes have arrived that nobody has received.
  virtual bool HasPendingData(SocketHandle socket);

  // 0 when the socket is readable within the time (bytes, a connection to accept, or the end), 1
  // otherwise.
  virtual int WaitReadable(SocketHandle socket, long seconds, long microseconds);
};

#endif  // MOSAICON_NET_CUT_SOCKET_H_
