#include "net/wait_time.h"

namespace {

class SystemWaitTime : public WaitTime {
 public:
  std::uint64_t Ticks() override { return SystemTicks(); }
  SocketWait WaitFor(SocketHandle socket, SocketEvent event, long long microseconds) override {
    return WaitForSystemSocket(socket, event, microseconds);
  }
};

SystemWaitTime systemTime;
thread_local WaitTime* currentTime = &systemTime;

}  // namespace

WaitTime& CurrentWaitTime() {
  return *currentTime;
}

void SetWaitTime(WaitTime* time) {
  currentTime = time != nullptr ? time : &systemTime;
}
