#include "files/name_pattern.h"

namespace {

char Lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// Each "*" takes as little as it can; when the rest does not match, the last one takes one more.
bool Matches(std::string_view name, std::string_view pattern) {
  size_t at = 0;
  size_t next = 0;
  size_t afterStar = std::string_view::npos;
  size_t taken = 0;  // up to here by the last star
  while (at < name.size()) {
    if (next < pattern.size() && pattern[next] == '*') {
      afterStar = ++next;
      taken = at;
    } else if (next < pattern.size() && (pattern[next] == '?' || Lower(pattern[next]) == Lower(name[at]))) {
      ++at;
      ++next;
    } else if (afterStar != std::string_view::npos) {
      at = ++taken;
      next = afterStar;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', next) == std::string_view::npos;
}

}  // namespace

bool MatchesPattern(std::string_view name, std::string_view pattern) {
  return pattern == "*.*" || Matches(name, pattern);
}
