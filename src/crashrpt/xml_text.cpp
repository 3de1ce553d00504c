#include "crashrpt/xml_text.h"

#include <array>
#include <cstdint>
#include <utility>

namespace {

constexpr std::array<std::pair<char, std::string_view>, 8> kReferences = {{{'&', "&amp;"},
                                                                           {'<', "&lt;"},
                                                                           {'>', "&gt;"},
                                                                           {'"', "&quot;"},
                                                                           {'\'', "&apos;"},
                                                                           {'\t', "&#9;"},
                                                                           {'\n', "&#10;"},
                                                                           {'\r', "&#13;"}}};

// Bytes of the sequence that begins with this byte; 0 when none does.
size_t SequenceLength(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  if (first >= 0xF0 && first <= 0xF4) return 4;
  return 0;
}

// Whether the bytes are one character that XML 1.0 allows.
bool IsAllowed(std::string_view sequence) {
  static constexpr std::array<uint32_t, 5> kSmallest = {0, 0x20, 0x80, 0x800, 0x10000};
  const auto first = static_cast<unsigned char>(sequence[0]);
  uint32_t code = sequence.size() == 1 ? first : first & (0x7FU >> sequence.size());
  for (const char c : sequence.substr(1)) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0U) != 0x80U) return false;
    code = code << 6U | (byte & 0x3FU);
  }
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return code >= kSmallest.at(sequence.size()) && !surrogate && code != 0xFFFE && code != 0xFFFF &&
         code <= 0x10FFFF;
}

bool AppendReference(char c, std::string& xml) {
  for (const auto& [character, reference] : kReferences) {
    if (c != character) continue;
    xml += reference;
    return true;
  }
  return false;
}

std::string Unescape(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    size_t used = 1;
    char c = text[0];
    for (const auto& [character, reference] : kReferences) {
      if (text.substr(0, reference.size()) != reference) continue;
      c = character;
      used = reference.size();
      break;
    }
    plain += c;
    text.remove_prefix(used);
  }
  return plain;
}

}  // namespace

std::string XmlText(std::string_view utf8) {
  std::string xml;
  while (!utf8.empty()) {
    if (AppendReference(utf8[0], xml)) {
      utf8.remove_prefix(1);
      continue;
    }
    const size_t length = SequenceLength(static_cast<unsigned char>(utf8[0]));
    const bool allowed = length > 0 && length <= utf8.size() && IsAllowed(utf8.substr(0, length));
    if (allowed) xml += utf8.substr(0, length);
    utf8.remove_prefix(allowed ? length : 1);
  }
  return xml;
}

std::string XmlElementText(std::string_view document, std::string_view element) {
  const std::string open = "<" + std::string(element) + ">";
  const size_t start = document.find(open);
  if (start == std::string_view::npos) return "";
  const std::string_view rest = document.substr(start + open.size());
  const size_t end = rest.find('<');
  if (end == std::string_view::npos) return "";
  return Unescape(rest.substr(0, end));
}
