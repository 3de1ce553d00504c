#include <charconv>
#include <cmath>
#include <string_view>

#include "kvtools/kvtools.h"

int KVT_ParseString(const std::string& text, char separator, std::vector<std::string>& parts) {
  parts.clear();
  if (text.empty()) return 0;
  size_t begin = 0;
  for (;;) {
    const size_t end = text.find(separator, begin);
    parts.push_back(text.substr(begin, end == std::string::npos ? end : end - begin));
    if (end == std::string::npos) return static_cast<int>(parts.size());
    begin = end + 1;
  }
}

int KVT_StringToDouble(const char* text, double* value) {
  if (text == nullptr) return 0;
  std::string_view number(text);
  constexpr std::string_view kBlanks = " \t\r\n";
  const size_t first = number.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return 0;
  number = number.substr(first, number.find_last_not_of(kBlanks) - first + 1);
  // from_chars knows no plus sign; "+-1" must not slip through.
  if (number.size() > 1 && number[0] == '+' && number[1] != '-') number.remove_prefix(1);

  double parsed = 0.0;
  const char* end = number.data() + number.size();
  const auto [stop, error] = std::from_chars(number.data(), end, parsed);
  if (error != std::errc() || stop != end || !std::isfinite(parsed)) return 0;
  *value = parsed;
  return 1;
}
