#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "kvtools/kvtools.h"

namespace {

using Clock = std::chrono::steady_clock;

long SecondsSince(Clock::time_point start) {
  return static_cast<long>(std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start).count());
}

TEST(Timer, TellsHoursMinutesAndSecondsSinceTheStart) {
  const Clock::time_point before = Clock::now();
  KVT_StartTimer();
  const Clock::time_point after = Clock::now();
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
  const long least = SecondsSince(after);
  const std::string text = KVT_GetElapsedTime();
  const long most = SecondsSince(before);

  long hours = -1;
  long minutes = -1;
  long seconds = -1;
  ASSERT_EQ(text.size(), 8U) << text;
  ASSERT_EQ(std::sscanf(text.c_str(), "%2ld:%2ld:%2ld", &hours, &minutes, &seconds), 3) << text;
  const long total = 3600 * hours + 60 * minutes + seconds;
  EXPECT_GE(total, least);
  EXPECT_GE(total, 1);
  EXPECT_LE(total, most);
}

TEST(Timer, StartsAnew) {
  KVT_StartTimer();
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
  const std::string first = KVT_GetElapsedTime();
  KVT_StartTimer();
  EXPECT_LT(KVT_GetElapsedTime(), first);
}

}  // namespace
