#include "net/ftp_pasv.h"

#include <cstddef>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace {

constexpr int kMaxNumber = 65535;

// Removes and returns what precedes the next separator, after any number of separators.
std::string_view TakeToken(std::string_view& text, std::string_view separators) {
  const size_t begin = text.find_first_not_of(separators);
  if (begin == std::string_view::npos) return text = {};
  const size_t end = text.find_first_of(separators, begin);
  const std::string_view token = text.substr(begin, end - begin);
  text = end == std::string_view::npos ? std::string_view() : text.substr(end);
  return token;
}

// Digits only, but for blanks around them; values above kMaxNumber are cut to it.
std::optional<int> TakeNumber(std::string_view& text) {
  std::string_view token = TakeToken(text, ",)\r\n");
  const size_t first = token.find_first_not_of(' ');
  if (first == std::string_view::npos) return std::nullopt;
  token = token.substr(first, token.find_last_not_of(' ') + 1 - first);
  int number = 0;
  for (const char c : token) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + (c - '0');
    if (number > kMaxNumber) number = kMaxNumber;
  }
  return number;
}

// Always takes four numbers, so that the port's come next.
std::string TakeAddress(std::string_view& text) {
  std::string address;
  bool isValid = true;
  for (int i = 0; i < 4; ++i) {
    const std::optional<int> number = TakeNumber(text);
    if (!number.has_value() || *number > 255) isValid = false;
    if (i > 0) address += '.';
    address += std::to_string(number.value_or(0));
  }
  return isValid ? address : std::string();
}

}  // namespace

PasvResult ParsePasvReply(const char* text) {
  PasvResult result;
  std::string_view rest = text == nullptr ? std::string_view() : text;
  const size_t bracket = rest.find('(');
  if (bracket == std::string_view::npos) return result;
  result.hasBracket = true;
  rest.remove_prefix(bracket);
  std::string_view numbers = TakeToken(rest, "()");
  result.address = TakeAddress(numbers);
  const std::optional<int> high = TakeNumber(numbers);
  const std::optional<int> low = TakeNumber(numbers);
  if (high.has_value() && low.has_value()) result.port = *high * 256 + *low;
  return result;
}

bool IsServerAddress(const std::string& dotted) {
  const long network = std::strtol(dotted.c_str(), nullptr, 10);
  return network >= 1 && network <= 223;
}
