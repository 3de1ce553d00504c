// What is written over the progress bar. The words for the time are the caller's. Portable.
#ifndef MOSAICON_PROGRESS_BAR_TEXT_H_
#define MOSAICON_PROGRESS_BAR_TEXT_H_

#include <cstdint>
#include <functional>
#include <string>

// The completed part of a range, which the lower bound deliberately does not shift: position 100 of 50
// to 150 is all of it. An empty range has no completed part.
double CompletedFraction(int position, int lower, int upper);

// Between two readings of a clock that counts milliseconds in 32 bits and starts over.
double ElapsedSeconds(std::int32_t startTicks, std::int32_t nowTicks);

using TimeFormatter = std::function<std::string(double fraction, double secondsLeft)>;

// idleText while it is too early for an estimate; then what formatTime says, after caption and a blank
// when there is one.
std::string BarText(double fraction, double elapsedSeconds, const std::string& caption,
                    const std::string& idleText, const TimeFormatter& formatTime);

#endif  // MOSAICON_PROGRESS_BAR_TEXT_H_
