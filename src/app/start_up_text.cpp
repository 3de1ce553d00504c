#include "app/start_up_text.h"

#include <algorithm>

#include "kvtools/ascii.h"
#include "kvtools/split_path.h"

std::string ShortVersion(const std::string& moduleVersion) {
  std::string version = moduleVersion;
  std::replace(version.begin(), version.end(), ',', '.');
  size_t point = version.find('.');
  for (int i = 0; i < 2 && point != std::string::npos; ++i) point = version.find('.', point + 1);
  return version.substr(0, point);
}

std::string InputListFromCommandLine(const std::string& commandLine, const std::string& programPath) {
  const PathParts program = SplitPath(programPath);
  // Other letters have lower case too, but file names are found whatever their case: only what is
  // lower-cased on both sides must agree.
  const std::string mark = LowerAscii(program.name + program.extension) + "\" ";
  std::string list = LowerAscii(commandLine);
  const size_t found = list.find(mark);
  if (found == std::string::npos) return "";
  list.erase(0, found + mark.size());
  std::erase(list, '"');
  return list;
}
