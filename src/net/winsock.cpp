#include "net/winsock.h"

bool StartWinsock(WSADATA& record) {
  return WSAStartup(MAKEWORD(1, 1), &record) == 0;
}

void StopWinsock() {
  WSACleanup();
}
