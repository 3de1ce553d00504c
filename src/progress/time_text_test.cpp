#include "progress/time_text.h"

#include <gtest/gtest.h>

namespace {

TEST(TimeText, NamesMinutesAndSeconds) {
  struct Case {
    double secondsLeft;
    const char* text;
  };
  const Case cases[] = {
      {150.0, "2 min, 30 sec remaining"},   {60.0, "1 min, 0 sec remaining"},
      {59.99, "59 sec remaining"},          {30.0, "30 sec remaining"},
      {12.7, "12 sec remaining"},           {1.0, "1 sec remaining"},
      {0.999, "Wait for process ending"},   {0.4, "Wait for process ending"},
      {0.0, "Wait for process ending"},     {-3.0, "Wait for process ending"},
      {7265.0, "121 min, 5 sec remaining"},
  };
  for (const Case& each : cases) EXPECT_EQ(FormatSecondsLeft(each.secondsLeft), each.text);
}

TEST(TimeText, EstimatesFromTheTimeSpent) {
  EXPECT_DOUBLE_EQ(EstimateSecondsLeft(0.5, 30.0), 30.0);
  EXPECT_DOUBLE_EQ(EstimateSecondsLeft(0.25, 10.0), 30.0);
  EXPECT_DOUBLE_EQ(EstimateSecondsLeft(1.0, 10.0), 0.0);
}

}  // namespace
