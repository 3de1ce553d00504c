#include "net/cut_socket.h"

#include "net/error_codes.h"
#include "net/socket_wait.h"

int CUT_Socket::OnSocketConnected(SOCKET /*socket*/, const char* /*remoteAddress*/) {
  return kNetSuccess;
}

int CUT_Socket::CloseSocketHandle(SOCKET socket) {
  return closesocket(socket);
}

int CUT_Socket::ShutdownSocket(SOCKET socket, int how) {
  return shutdown(socket, how);
}

int CUT_Socket::RecvRaw(SOCKET socket, char* buffer, int length, int flags) {
  return recv(socket, buffer, length, flags);
}

int CUT_Socket::SendRaw(SOCKET socket, const char* buffer, int length, int flags) {
  return send(socket, buffer, length, flags);
}

bool CUT_Socket::HasPendingData(SOCKET socket) {
  return HasPendingBytes(socket);
}

int CUT_Socket::WaitReadable(SOCKET socket, long seconds, long microseconds) {
  return WaitForSocket(socket, SocketEvent::kReadable, seconds, microseconds, nullptr) ? 0 : 1;
}
