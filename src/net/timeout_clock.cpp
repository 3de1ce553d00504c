#include "net/timeout_clock.h"

#include "net/wait_time.h"

namespace {

thread_local std::uint64_t g_nPaused = 0;  // milliseconds

}  // namespace

std::uint64_t TimeoutClock() {
  return CurrentWaitTime().Ticks() - g_nPaused;
}

TimeoutPause::TimeoutPause() : m_nStart(TimeoutClock()) {}

TimeoutPause::~TimeoutPause() {
  g_nPaused += TimeoutClock() - m_nStart;
}
