// What only tests want to know of a socket or to do to it. Test code.
#ifndef MOSAICON_NET_TESTING_SOCKET_OPTIONS_H_
#define MOSAICON_NET_TESTING_SOCKET_OPTIONS_H_

#include <cstdint>

#include "net/socket_system.h"

// The socket's own idea, in milliseconds; -1 when it has none.
int TimeoutOf(SocketHandle socket, SocketDirection direction);

// The port of the other end.
std::uint16_t PeerPortOf(SocketHandle socket);

// Closing it will break the connection: the peer's calls fail instead of seeing its end.
void BreakOnClose(SocketHandle socket);

// What is sent from now on goes out at once, and so does what was held back to be sent with it.
void SendAtOnce(SocketHandle socket);

#endif  // MOSAICON_NET_TESTING_SOCKET_OPTIONS_H_
