// Letters without regard to the locale. Bytes beyond ASCII stay as they are: what they mean depends on the
// code page, and a text may be UTF-8 as well. Portable.
#ifndef MOSAICON_KVTOOLS_ASCII_H_
#define MOSAICON_KVTOOLS_ASCII_H_

#include <algorithm>
#include <string>

constexpr char LowerAscii(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

inline std::string LowerAscii(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char letter) { return LowerAscii(letter); });
  return text;
}

#endif  // MOSAICON_KVTOOLS_ASCII_H_
