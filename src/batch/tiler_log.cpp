#include "batch/tiler_log.h"

#include <sstream>

TilerResult ReadTilerResult(const std::string& text) {
  const std::string okLine = "RESULT OK";
  const std::string failedPrefix = "RESULT FAILED ";
  TilerResult result{false, false, "the tiling script did not start or was ended from outside"};
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line == okLine) result = {true, true, ""};
    if (line.rfind(failedPrefix, 0) == 0) result = {false, true, line.substr(failedPrefix.size())};
  }
  return result;
}

std::vector<std::string> QuotedArguments(const std::string& commandLine) {
  std::vector<std::string> arguments;
  size_t begin = commandLine.find('"');
  while (begin != std::string::npos) {
    const size_t end = commandLine.find('"', begin + 1);
    if (end == std::string::npos) break;
    arguments.push_back(commandLine.substr(begin + 1, end - begin - 1));
    begin = commandLine.find('"', end + 1);
  }
  return arguments;
}
