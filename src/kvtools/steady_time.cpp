#include "kvtools/steady_time.h"

#include <thread>

namespace {

class SystemTime : public SteadyTime {
 public:
  std::chrono::steady_clock::time_point Now() override { return std::chrono::steady_clock::now(); }
  void Wait(std::chrono::milliseconds time) override { std::this_thread::sleep_for(time); }
};

SystemTime systemTime;
thread_local SteadyTime* currentTime = &systemTime;

}  // namespace

SteadyTime& CurrentSteadyTime() {
  return *currentTime;
}

void SetSteadyTime(SteadyTime* time) {
  currentTime = time != nullptr ? time : &systemTime;
}
