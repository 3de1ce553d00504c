#include "job/bounded_text.h"

#include <cstdarg>
#include <cstdio>

std::optional<std::string> FormatBounded(size_t size, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text(size, '\0');
  const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  if (length < 0 || static_cast<size_t>(length) >= size) return std::nullopt;
  text.resize(static_cast<size_t>(length));
  return text;
}
