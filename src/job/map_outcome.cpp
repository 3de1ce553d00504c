#include "job/map_outcome.h"

#include <algorithm>

namespace {

bool IsMissing(const MapOutcome& map) {
  return map.state == MapState::kFailed || map.state == MapState::kLeftOut;
}

std::string Describe(const MapOutcome& map) {
  std::string line = map.orthophoto + ": ";
  if (map.state == MapState::kLeftOut) line += "not made, because ";
  line += map.problem;
  if (map.exitCode) line += " (exit code " + std::to_string(*map.exitCode) + ")";
  return line;
}

}  // namespace

bool AnyFailed(const std::vector<MapOutcome>& maps) {
  return std::any_of(maps.begin(), maps.end(),
                     [](const MapOutcome& map) { return map.state == MapState::kFailed; });
}

std::string CountProblems(const std::vector<MapOutcome>& maps) {
  const auto missing = std::count_if(maps.begin(), maps.end(), IsMissing);
  if (missing == 0) return "";
  if (maps.size() == 1) return "The map is missing or incomplete:";
  return std::to_string(missing) + " of " + std::to_string(maps.size()) +
         (missing == 1 ? " maps is missing or incomplete:" : " maps are missing or incomplete:");
}

std::string DescribeProblems(const std::vector<MapOutcome>& maps, const std::string& details) {
  std::string text;
  for (const MapOutcome& map : maps) {
    if (IsMissing(map)) text += Describe(map) + "\r\n";
  }
  if (!text.empty() && !details.empty()) text += "Details are in " + details + "\r\n";
  return text;
}
