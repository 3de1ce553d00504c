#include "job/progress_record.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

int ParseProgressChunk(const char (&buffer)[kProgressChunk]) {
  const std::string text(buffer, strnlen(buffer, kProgressChunk));
  const size_t first = text.find(' ');
  if (first == std::string::npos) return 0;
  const size_t second = text.find(' ', first + 1);
  if (second == std::string::npos) return 0;
  const double percent = std::atof(text.substr(first, second - first).c_str()) * 100.0;
  if (percent != percent) return 0;
  return static_cast<int>(std::clamp(percent, static_cast<double>(std::numeric_limits<int>::min()),
                                     static_cast<double>(std::numeric_limits<int>::max())));
}
