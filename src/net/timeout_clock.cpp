#include "net/timeout_clock.h"

namespace {

thread_local ULONGLONG g_nPaused = 0;  // milliseconds

}  // namespace

ULONGLONG TimeoutClock() {
  return GetTickCount64() - g_nPaused;
}

TimeoutPause::TimeoutPause() : m_nStart(TimeoutClock()) {}

TimeoutPause::~TimeoutPause() {
  g_nPaused += TimeoutClock() - m_nStart;
}
