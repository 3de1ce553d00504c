#include "progress/bar_text.h"

#include "progress/time_text.h"

namespace {

constexpr double kTicksPerSecond = 1000.0;

}  // namespace

double CompletedFraction(int position, int lower, int upper) {
  if (upper == lower) return 0.0;
  return position / (static_cast<double>(upper) - lower);
}

double ElapsedSeconds(std::int32_t startTicks, std::int32_t nowTicks) {
  const std::uint32_t ticks = static_cast<std::uint32_t>(nowTicks) - static_cast<std::uint32_t>(startTicks);
  return static_cast<std::int32_t>(ticks) / kTicksPerSecond;
}

std::string BarText(double fraction, double elapsedSeconds, const std::string& caption,
                    const std::string& idleText, const TimeFormatter& formatTime) {
  if (!(fraction > kLeastFractionForEstimate)) return idleText;
  const std::string time = formatTime(fraction, EstimateSecondsLeft(fraction, elapsedSeconds));
  return caption.empty() ? time : caption + " " + time;
}
