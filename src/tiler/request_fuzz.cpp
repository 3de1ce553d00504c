// libFuzzer: any words make a request or are refused by a sentence, and the key is never shown. A line for
// each word.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tiler/request.h"
#include "tiler/tiler_error.h"

namespace {

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines(1);
  for (const char c : text) {
    if (c == '\n') {
      lines.emplace_back();
    } else if (c != '\0') {  // no word of a command line has one
      lines.back() += c;
    }
  }
  return lines;
}

void Check(const tiler::Request& request) {
  if (request.input.empty() || request.output.empty()) __builtin_trap();
  if (request.threads < 0 || request.threads > tiler::kMostThreads) __builtin_trap();
  if (request.memory < 0 || request.memory > tiler::kMostMemory) __builtin_trap();
  if (!request.share) return;
  const tiler::Share& share = *request.share;
  if (request.merge || share.index < 0 || share.index >= share.count) __builtin_trap();
  if (share.count > tiler::kMostShares) __builtin_trap();
}

bool IsAlphanumeric(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isalnum(c) != 0; });
}

// A key that the other words do not show either.
void CheckThatTheKeyIsHidden(const std::string& key, const std::vector<std::string>& words) {
  if (key.empty() || !IsAlphanumeric(key)) return;
  std::string all;
  for (const std::string& word : words) all += word + "\n";
  if (all.find(key) != all.rfind(key)) return;
  if (tiler::ArgumentsWithoutKey(words).find(key) != std::string::npos) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<std::string> words = LinesOf(std::string(data, data + size));
  try {
    const tiler::Request request = tiler::ParseRequest(words);
    Check(request);
    CheckThatTheKeyIsHidden(request.key, words);
  } catch (const tiler::TilerError& error) {
    if (std::string(error.what()).empty()) __builtin_trap();
  }
  return 0;
}
