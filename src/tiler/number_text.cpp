#include "tiler/number_text.h"

#include <charconv>
#include <cstdio>

namespace tiler {

std::string WithDecimals(double value, int decimals) {
  char text[400];  // of the largest double, too
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

std::string ShortestText(double value) {
  constexpr int kLeastExponent = -4;  // of ten; numbers beyond these are shown with one
  constexpr int kMostExponent = 15;
  char text[64];
  const auto scientific = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific);
  std::string shown(text, scientific.ptr);
  const int exponent = std::stoi(shown.substr(shown.find('e') + 1));
  if (exponent < kLeastExponent || exponent > kMostExponent) return shown;
  const auto fixed = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed);
  std::string plain(text, fixed.ptr);
  if (plain.find('.') == std::string::npos) plain += ".0";
  return plain;
}

std::string Joined(const std::vector<int>& numbers, const char* between) {
  std::string text;
  for (const int number : numbers) text += (text.empty() ? "" : between) + std::to_string(number);
  return text;
}

}  // namespace tiler
