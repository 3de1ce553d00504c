#include "files/utf8_text.h"

std::string AnsiFromUtf8(const std::string& utf8) {
  return utf8;
}

std::string Utf8FromAnsi(const std::string& ansi) {
  return ansi;
}
