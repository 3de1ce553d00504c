#include "publish/html_text.h"

namespace {

const char* EntityOf(char c) {
  switch (c) {
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '&':
      return "&amp;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return nullptr;
  }
}

// Browsers would send bytes beyond ASCII as UTF-8, whatever the server listed, and drop line breaks.
bool IsPrintableAscii(char c) {
  return c >= ' ' && c <= '~';
}

std::string PercentEncode(const std::string& text, const std::string& reserved) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string result;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    // Blanks around an address are not part of it.
    const bool isOuterBlank = c == ' ' && (i == 0 || i + 1 == text.size());
    if (IsPrintableAscii(c) && !isOuterBlank && reserved.find(c) == std::string::npos) {
      result += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      result += '%';
      result += kDigits[byte >> 4];
      result += kDigits[byte & 0xF];
    }
  }
  return result;
}

}  // namespace

std::string EscapeHtml(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const char* entity = EntityOf(c);
    if (entity != nullptr) {
      result += entity;
    } else {
      result += c;
    }
  }
  return result;
}

std::string EscapePathComponent(const std::string& name) {
  // With a colon, the beginning of a relative address would be taken for a scheme.
  return EscapeHtml(PercentEncode(name, "%#?/\\:"));
}

std::string EscapeQueryValue(const std::string& value) {
  return EscapeHtml(PercentEncode(value, "%#&+"));
}
