// Time that passes only when it is waited: waits end at once. For tests.
#ifndef MOSAICON_KVTOOLS_TESTING_TOLD_TIME_H_
#define MOSAICON_KVTOOLS_TESTING_TOLD_TIME_H_

#include "kvtools/steady_time.h"

// For the thread that makes it, as long as it lives.
class ToldTime : public SteadyTime {
 public:
  ToldTime() { SetSteadyTime(this); }
  ~ToldTime() override { SetSteadyTime(nullptr); }
  ToldTime(const ToldTime&) = delete;
  ToldTime& operator=(const ToldTime&) = delete;

  std::chrono::steady_clock::time_point Now() override { return m_now; }
  void Wait(std::chrono::milliseconds time) override { m_now += time; }

 private:
  std::chrono::steady_clock::time_point m_now = std::chrono::steady_clock::now();
};

#endif  // MOSAICON_KVTOOLS_TESTING_TOLD_TIME_H_
