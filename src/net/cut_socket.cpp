#include "net/cut_socket.h"

#include "net/error_codes.h"
#include "net/socket_wait.h"

int CUT_Socket::OnSocketConnected(SocketHandle /*socket*/, const char* /*remoteAddress*/) {
  return kNetSuccess;
}

int CUT_Socket::CloseSocketHandle(SocketHandle socket) {
  return CloseSystemSocket(socket);
}

int CUT_Socket::ShutdownSocket(SocketHandle socket, int how) {
  return ShutDownSystemSocket(socket, how);
}

int CUT_Socket::RecvRaw(SocketHandle socket, char* buffer, int length, int flags) {
  return ReceiveOnSystemSocket(socket, buffer, length, flags);
}

int CUT_Socket::SendRaw(SocketHandle socket, const char* buffer, int length, int flags) {
  return SendOnSystemSocket(socket, buffer, length, flags);
}

bool CUT_Socket::HasPendingData(SocketHandle socket) {
  return PendingBytesOf(socket) > 0;
}

int CUT_Socket::WaitReadable(SocketHandle socket, long seconds, long microseconds) {
  return WaitForSocket(socket, SocketEvent::kReadable, seconds, microseconds, nullptr) ? 0 : 1;
}
