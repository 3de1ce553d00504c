#include "files/utf8_text.h"
#include "files/wide_text.h"

std::string AnsiFromUtf8(const std::string& utf8) {
  return AnsiFromWide(WideFromUtf8(utf8));
}

std::string Utf8FromAnsi(const std::string& ansi) {
  return Utf8FromWide(WideFromAnsi(ansi));
}
