// The words in which remaining time is told, everywhere in the program. Portable.
#ifndef MOSAICON_PROGRESS_TIME_TEXT_H_
#define MOSAICON_PROGRESS_TIME_TEXT_H_

#include <string>

// Below this completed fraction an estimate would be a guess, and none is shown.
inline constexpr double kLeastFractionForEstimate = 0.02;

// Seconds left when fraction (above 0, up to 1) took elapsedSeconds.
double EstimateSecondsLeft(double fraction, double elapsedSeconds);

// "%d min, %d sec remaining", "%d sec remaining" or, below one second, "Wait for process ending".
// Fractions of a second are dropped.
std::string FormatSecondsLeft(double secondsLeft);

#endif  // MOSAICON_PROGRESS_TIME_TEXT_H_
