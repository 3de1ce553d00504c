#include "net/testing/socket_options.h"

#include <winsock2.h>

namespace {

SOCKET AsSocket(SocketHandle socket) {
  return static_cast<SOCKET>(socket);
}

}  // namespace

int TimeoutOf(SocketHandle socket, SocketDirection direction) {
  const int option = direction == SocketDirection::kReceive ? SO_RCVTIMEO : SO_SNDTIMEO;
  int milliseconds = -1;
  int size = sizeof milliseconds;
  getsockopt(AsSocket(socket), SOL_SOCKET, option, reinterpret_cast<char*>(&milliseconds), &size);
  return milliseconds;
}

std::uint16_t PeerPortOf(SocketHandle socket) {
  sockaddr_in peer = {};
  int size = sizeof peer;
  getpeername(AsSocket(socket), reinterpret_cast<sockaddr*>(&peer), &size);
  return ntohs(peer.sin_port);
}

void BreakOnClose(SocketHandle socket) {
  const linger hard = {1, 0};
  setsockopt(AsSocket(socket), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&hard), sizeof hard);
}

void SendAtOnce(SocketHandle socket) {
  const int on = 1;
  setsockopt(AsSocket(socket), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
}
