#include "progress/time_text.h"

#include <cmath>

double EstimateSecondsLeft(double fraction, double elapsedSeconds) {
  return elapsedSeconds / fraction * (1.0 - fraction);
}

std::string FormatSecondsLeft(double secondsLeft) {
  const int seconds = static_cast<int>(std::fmod(secondsLeft, 60.0));
  if (secondsLeft >= 60.0) {
    return std::to_string(static_cast<int>(secondsLeft / 60.0)) + " min, " + std::to_string(seconds) +
           " sec remaining";
  }
  if (seconds < 1) return "Wait for process ending";
  return std::to_string(seconds) + " sec remaining";
}
