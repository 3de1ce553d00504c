#include <gtest/gtest.h>

#include "kvtools/kvtools.h"
#include "kvtools/testing/told_time.h"

namespace {

using std::chrono::milliseconds;

TEST(Timer, TellsHoursMinutesAndSecondsSinceTheStart) {
  const struct {
    milliseconds passed;
    const char* text;
  } cases[] = {
      {milliseconds(0), "00:00:00"},       {milliseconds(999), "00:00:00"},
      {milliseconds(1000), "00:00:01"},    {milliseconds(59999), "00:00:59"},
      {milliseconds(60000), "00:01:00"},   {milliseconds(3599999), "00:59:59"},
      {milliseconds(3661000), "01:01:01"}, {std::chrono::hours(100), "100:00:00"},
  };
  ToldTime time;
  for (const auto& each : cases) {
    KVT_StartTimer();
    time.Wait(each.passed);
    EXPECT_EQ(KVT_GetElapsedTime(), each.text);
  }
}

TEST(Timer, StartsAnew) {
  ToldTime time;
  KVT_StartTimer();
  time.Wait(milliseconds(1100));
  EXPECT_EQ(KVT_GetElapsedTime(), "00:00:01");
  time.Wait(milliseconds(1100));
  EXPECT_EQ(KVT_GetElapsedTime(), "00:00:02") << "telling it does not start it";
  KVT_StartTimer();
  EXPECT_EQ(KVT_GetElapsedTime(), "00:00:00");
}

TEST(Timer, RunsWithTheSystemsTime) {
  KVT_StartTimer();
  EXPECT_EQ(KVT_GetElapsedTime().substr(0, 3), "00:");
}

}  // namespace
