#include "crashrpt/consent_text.h"

namespace {

constexpr size_t kLongestValue = 60;  // characters; they fit into one line of the window

std::string OneLine(const std::string& text) {
  std::string line = text.substr(0, kLongestValue);
  for (char& c : line) {
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
  }
  return line.size() < text.size() ? line + "..." : line;
}

}  // namespace

std::string DescribeContents(const std::vector<Property>& properties, bool withDump) {
  std::string text = "What happened, where in the program, when, and in which version\r\n";
  for (const Property& property : properties) {
    text += OneLine(property.name) + ": " + OneLine(property.value) + "\r\n";
  }
  if (withDump) {
    text +=
        "Part of the program's memory at that moment (the stacks of its threads), with what it was working "
        "on: paths, names, texts that you typed\r\n";
  }
  return text;
}
