#include <cstdio>

#include "kvtools/kvtools.h"
#include "kvtools/steady_time.h"

namespace {

std::chrono::steady_clock::time_point g_timerStart = std::chrono::steady_clock::now();

}  // namespace

void KVT_StartTimer() {
  g_timerStart = CurrentSteadyTime().Now();
}

std::string KVT_GetElapsedTime() {
  const auto elapsed = CurrentSteadyTime().Now() - g_timerStart;
  const long long seconds = std::chrono::duration_cast<std::chrono::seconds>(elapsed).count();
  char text[40];
  std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld", seconds / 3600, seconds / 60 % 60, seconds % 60);
  return text;
}
