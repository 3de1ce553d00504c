// By itself, so that a program can be built whose sockets do not start.
#include <winsock2.h>

#include "net/socket_system.h"

int StartSockets() {
  WSADATA record = {};
  return WSAStartup(MAKEWORD(1, 1), &record) == 0 ? record.wVersion : 0;
}

void StopSockets() {
  WSACleanup();
}
