#include "net/testing/socket_options.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>

int TimeoutOf(SocketHandle socket, SocketDirection direction) {
  const int option = direction == SocketDirection::kReceive ? SO_RCVTIMEO : SO_SNDTIMEO;
  timeval time = {};
  socklen_t size = sizeof time;
  if (getsockopt(static_cast<int>(socket), SOL_SOCKET, option, &time, &size) != 0) return -1;
  return static_cast<int>(time.tv_sec * 1000 + (time.tv_usec + 500) / 1000);
}

std::uint16_t PeerPortOf(SocketHandle socket) {
  sockaddr_in peer = {};
  socklen_t size = sizeof peer;
  getpeername(static_cast<int>(socket), reinterpret_cast<sockaddr*>(&peer), &size);
  return ntohs(peer.sin_port);
}

void BreakOnClose(SocketHandle socket) {
  const linger hard = {1, 0};
  setsockopt(static_cast<int>(socket), SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
}

void SendAtOnce(SocketHandle socket) {
  const int on = 1;
  setsockopt(static_cast<int>(socket), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}
