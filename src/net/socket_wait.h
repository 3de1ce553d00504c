// Waiting for a socket without neglecting everything else. Portable; any thread.
#ifndef MOSAICON_NET_SOCKET_WAIT_H_
#define MOSAICON_NET_SOCKET_WAIT_H_

#include "net/socket_system.h"

// Who has other things to do while a connection is silent: a dialog that must stay alive.
class WaitListener {
 public:
  virtual ~WaitListener() = default;
  // Called in the thread that waits, some twenty milliseconds after the wait began and as often from
  // then on. False ends the wait, as if its time had run out. Must not use the client that waits.
  virtual bool OnWait() = 0;
};

// True when the event came within the time. False at once when it never can. listener may be null.
bool WaitForSocket(SocketHandle socket, SocketEvent event, long seconds, long microseconds,
                   WaitListener* listener);

#endif  // MOSAICON_NET_SOCKET_WAIT_H_
