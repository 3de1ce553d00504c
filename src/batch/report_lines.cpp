#include "batch/report_lines.h"

#include <set>
#include <sstream>

std::string WithoutFalseSuccess(const std::string& log, const std::map<std::string, std::string>& results) {
  std::set<std::string> falseLines;
  for (const auto& [orthophoto, problem] : results) {
    if (!problem.empty()) falseLines.insert("- " + orthophoto + ": OK");
  }
  std::string kept;
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (falseLines.count(line) == 0) kept += line + '\n';
  }
  return kept;
}
