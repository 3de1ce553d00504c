// How the waits of a thread pass their time: as the system has it, unless a test puts something in its
// place, for nobody waits fifteen seconds to see that fifteen seconds are waited. Portable.
#ifndef MOSAICON_NET_WAIT_TIME_H_
#define MOSAICON_NET_WAIT_TIME_H_

#include <cstdint>

#include "net/socket_system.h"

class WaitTime {
 public:
  virtual ~WaitTime() = default;

  // Both as the functions of socket_system.h.
  virtual std::uint64_t Ticks() = 0;
  virtual SocketWait WaitFor(SocketHandle socket, SocketEvent event, long long microseconds) = 0;
};

// Of the calling thread.
WaitTime& CurrentWaitTime();

// For the calling thread from now on. Borrowed; null: the system's.
void SetWaitTime(WaitTime* time);

#endif  // MOSAICON_NET_WAIT_TIME_H_
