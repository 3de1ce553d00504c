#include "kvtools/steady_time.h"

#include <gtest/gtest.h>

#include "kvtools/testing/told_time.h"

namespace {

using std::chrono::milliseconds;

TEST(SteadyTime, PassesAsItIsWaited) {
  const auto before = CurrentSteadyTime().Now();
  CurrentSteadyTime().Wait(milliseconds(30));
  EXPECT_GE(CurrentSteadyTime().Now() - before, milliseconds(30));
}

TEST(SteadyTime, IsThatOfTheTestWhileItLasts) {
  {
    ToldTime time;
    const auto before = CurrentSteadyTime().Now();
    EXPECT_EQ(CurrentSteadyTime().Now(), before);
    CurrentSteadyTime().Wait(std::chrono::hours(30));
    EXPECT_EQ(CurrentSteadyTime().Now() - before, std::chrono::hours(30));
  }
  const auto now = std::chrono::steady_clock::now();
  EXPECT_LT(CurrentSteadyTime().Now() - now, std::chrono::hours(1));
}

}  // namespace
