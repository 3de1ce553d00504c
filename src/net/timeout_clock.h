// The clock that time-outs are measured by. A wait lets its listener have turns, and a turn may put a
// question to the user: as long as that is open, no time-out of the thread runs down. Portable.
#ifndef MOSAICON_NET_TIMEOUT_CLOCK_H_
#define MOSAICON_NET_TIMEOUT_CLOCK_H_

#include <cstdint>

// Milliseconds from any moment on, without the pauses that the calling thread has made.
std::uint64_t TimeoutClock();

// A pause for as long as it lives. Pauses may lie within each other, and waits within pauses.
class TimeoutPause {
 public:
  TimeoutPause();
  ~TimeoutPause();
  TimeoutPause(const TimeoutPause&) = delete;
  TimeoutPause& operator=(const TimeoutPause&) = delete;

 private:
  std::uint64_t m_nStart;
};

#endif  // MOSAICON_NET_TIMEOUT_CLOCK_H_
