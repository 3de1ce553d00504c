// Which names a search pattern stands for, in the manner of Windows: "*" is any number of characters, "?"
// exactly one, the case of ASCII letters does not matter, and "*.*" is every name. Portable, any thread.
#ifndef MOSAICON_FILES_NAME_PATTERN_H_
#define MOSAICON_FILES_NAME_PATTERN_H_

#include <string_view>

bool MatchesPattern(std::string_view name, std::string_view pattern);

#endif  // MOSAICON_FILES_NAME_PATTERN_H_
