// The time that is measured and waited: as the system has it, unless a test puts something in its place, for
// nobody waits two seconds to see that two seconds are waited. Portable.
#ifndef MOSAICON_KVTOOLS_STEADY_TIME_H_
#define MOSAICON_KVTOOLS_STEADY_TIME_H_

#include <chrono>

class SteadyTime {
 public:
  virtual ~SteadyTime() = default;

  virtual std::chrono::steady_clock::time_point Now() = 0;
  // Returns when this time has passed.
  virtual void Wait(std::chrono::milliseconds time) = 0;
};

// Of the calling thread.
SteadyTime& CurrentSteadyTime();

// For the calling thread from now on. Borrowed; null: the system's.
void SetSteadyTime(SteadyTime* time);

#endif  // MOSAICON_KVTOOLS_STEADY_TIME_H_
