#include "job/utf8_text.h"

std::string AnsiFromUtf8(const std::string& utf8) {
  return utf8;
}
