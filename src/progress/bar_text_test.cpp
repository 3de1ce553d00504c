#include "progress/bar_text.h"

#include <gtest/gtest.h>

#include <climits>

#include "progress/time_text.h"

namespace {

std::string TellTime(double /*fraction*/, double secondsLeft) {
  return FormatSecondsLeft(secondsLeft);
}

std::string TellNothing(double /*fraction*/, double /*secondsLeft*/) {
  return {};
}

TEST(CompletedFraction, IsNotShiftedByTheLowerBound) {
  EXPECT_EQ(CompletedFraction(50, 0, 100), 0.5);
  EXPECT_EQ(CompletedFraction(1, 0, 3), 1.0 / 3.0);
  EXPECT_EQ(CompletedFraction(75, 50, 100), 1.5);
  EXPECT_EQ(CompletedFraction(-20, -20, 80), -0.2);
  EXPECT_EQ(CompletedFraction(250, 0, 100), 2.5);
}

TEST(CompletedFraction, HasNoTroubleWithAnyRange) {
  EXPECT_EQ(CompletedFraction(7, 7, 7), 0.0);
  EXPECT_EQ(CompletedFraction(0, 0, 0), 0.0);
  EXPECT_EQ(CompletedFraction(INT_MAX, INT_MIN, INT_MAX), INT_MAX / 4294967295.0);
}

TEST(ElapsedSeconds, AreMillisecondsOfTheClock) {
  EXPECT_EQ(ElapsedSeconds(1000, 31500), 30.5);
  EXPECT_EQ(ElapsedSeconds(-29000, 1000), 30.0);
  EXPECT_EQ(ElapsedSeconds(2000, 1000), -1.0);
  EXPECT_EQ(ElapsedSeconds(INT_MAX - 499, INT_MIN + 500), 1.0) << "the clock started over";
}

TEST(BarText, EstimatesFromTheFractionAndTheTimeSpent) {
  EXPECT_EQ(BarText(0.5, 30.0, "", "", TellTime), "30 sec remaining");
  EXPECT_EQ(BarText(0.25, 40.0, "", "", TellTime), "2 min, 0 sec remaining");
  EXPECT_EQ(BarText(1.0, 30.0, "", "", TellTime), "Wait for process ending");
  EXPECT_EQ(BarText(1.5, 30.0, "", "", TellTime), "Wait for process ending");
}

TEST(BarText, StartsWithTheCaption) {
  EXPECT_EQ(BarText(0.5, 12.7, "Uploading", "", TellTime), "Uploading 12 sec remaining");
  EXPECT_EQ(BarText(0.5, 12.7, "100% %s", "", TellTime), "100% %s 12 sec remaining");
  EXPECT_EQ(BarText(0.5, 12.7, "Uploading", "", TellNothing), "Uploading ");
  EXPECT_EQ(BarText(0.5, 12.7, "", "", TellNothing), "");
}

TEST(BarText, IsTheIdleTextWhileAnEstimateWouldBeAGuess) {
  EXPECT_EQ(BarText(0.02, 30.0, "Uploading", "Please wait", TellTime), "Please wait");
  EXPECT_EQ(BarText(0.0, 30.0, "Uploading", "", TellTime), "");
  EXPECT_EQ(BarText(-0.5, 30.0, "Uploading", "Please wait", TellTime), "Please wait");
  EXPECT_EQ(BarText(0.021, 0.021, "", "Please wait", TellTime), "Wait for process ending");
  EXPECT_EQ(BarText(0.021, 2.1, "", "Please wait", TellTime), "1 min, 37 sec remaining");
}

TEST(BarText, HandsTheEstimateToTheFormatter) {
  double askedFraction = 0.0;
  double askedSeconds = 0.0;
  const auto format = [&](double fraction, double secondsLeft) {
    askedFraction = fraction;
    askedSeconds = secondsLeft;
    return std::string("soon");
  };
  EXPECT_EQ(BarText(0.75, 30.0, "", "idle", format), "soon");
  EXPECT_EQ(askedFraction, 0.75);
  EXPECT_EQ(askedSeconds, 10.0);
}

}  // namespace
