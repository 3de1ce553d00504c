#include "files/one_line.h"

namespace files {

std::string OneLine(const std::string& text) {
  constexpr const char* kBlanks = " \t\r\n\v\f";
  std::string line;
  std::size_t begin = text.find_first_not_of(kBlanks);
  while (begin != std::string::npos) {
    const std::size_t end = text.find_first_of(kBlanks, begin);
    if (!line.empty()) line += ' ';
    line += text.substr(begin, end - begin);
    begin = text.find_first_not_of(kBlanks, end);
  }
  return line;
}

}  // namespace files
