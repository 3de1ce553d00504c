#include "batch/report_lines.h"

#include <set>
#include <sstream>

std::string WithoutFalseSuccess(const std::string& log, const std::vector<MapOutcome>& maps) {
  std::set<std::string> falseLines;
  for (const MapOutcome& map : maps) {
    if (map.state != MapState::kComplete) falseLines.insert("- " + map.orthophoto + ": OK");
  }
  std::string kept;
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (falseLines.count(line) == 0) kept += line + '\n';
  }
  return kept;
}
