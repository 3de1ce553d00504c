#include "net/net_text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

char LowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

void TrimLineEnd(char* line) {
  if (line == nullptr) return;
  const size_t length = std::strlen(line);
  for (size_t back = 1; back <= 2 && back <= length; ++back) {
    char& last = line[length - back];
    if (last == '\r' || last == '\n') last = '\0';
  }
}

void CopyCut(std::string_view text, char* field, size_t size) {
  const size_t length = std::min(text.size(), size - 1);
  std::char_traits<char>::move(field, text.data(), length);
  field[length] = '\0';
}

bool CopyWhole(std::string_view text, char* field, size_t size) {
  if (text.size() >= size) return false;
  CopyCut(text, field, size);
  return true;
}

int CountTokens(const char* text, const char* delimiters) {
  if (text == nullptr) return 0;
  if (delimiters == nullptr) delimiters = "";
  int count = 0;
  for (text += std::strspn(text, delimiters); *text != '\0'; text += std::strspn(text, delimiters)) {
    ++count;
    text += std::strcspn(text, delimiters);
  }
  return count;
}

bool IsSameIgnoringCase(std::string_view one, std::string_view other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [](char a, char b) { return LowerCase(a) == LowerCase(b); });
}

bool HasCommandBreak(const char* text) {
  return text != nullptr && std::strpbrk(text, "\r\n") != nullptr;
}

bool FormatCommand(char (&buffer)[kFtpLineSize], const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
  va_end(arguments);
  if (length >= 0 && static_cast<size_t>(length) < sizeof buffer) return true;
  buffer[0] = '\0';
  return false;
}

void Wipe(void* bytes, size_t size) {
  // A compiler may leave out what nobody reads, but not this.
  volatile char* const byte = static_cast<volatile char*>(bytes);
  for (size_t i = 0; i < size; ++i) byte[i] = 0;
}
