#include "net/ftp_reply.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "net/net_text.h"

namespace {

constexpr size_t kCodeDigits = 3;
constexpr size_t kMaxPath = 260;

std::string_view View(const char* text) {
  return text == nullptr ? std::string_view() : text;
}

enum class LineResult { kRead, kNothing, kEndless };

// Of a line that does not fit, reads the rest and forgets it.
LineResult ReadLine(ReplySource& source, char (&line)[kFtpLineSize]) {
  line[0] = '\0';
  int count = source.NextLine(line, sizeof line);
  if (count < 1) return LineResult::kNothing;
  bool isCut = count + 1 == static_cast<int>(sizeof line) && line[count - 1] != '\n';
  TrimLineEnd(line);
  char rest[kFtpLineSize];
  for (int pieces = 0; isCut; ++pieces) {
    if (pieces == kMaxReplyLines) return LineResult::kEndless;
    count = source.NextLine(rest, sizeof rest);
    isCut = count + 1 == static_cast<int>(sizeof rest) && rest[count - 1] != '\n';
  }
  return LineResult::kRead;
}

}  // namespace

int ReplyCode(const char* line) {
  const std::string code(View(line).substr(0, kCodeDigits));
  return static_cast<int>(std::strtol(code.c_str(), nullptr, 10));
}

bool OpensMultiLine(const char* line) {
  const std::string_view text = View(line);
  return text.size() > kCodeDigits && text[kCodeDigits] == '-';
}

bool EndsMultiLine(const char* line, const char* opening) {
  const std::string_view text = View(line);
  const std::string_view code = View(opening).substr(0, kCodeDigits);
  return code.size() == kCodeDigits && text.size() > kCodeDigits && text.substr(0, kCodeDigits) == code &&
         text[kCodeDigits] == ' ';
}

void CopyReplyText(const char* line, char* buffer, int size) {
  if (buffer == nullptr || size <= 0) return;
  std::string_view text = View(line);
  text.remove_prefix(std::min(text.size(), kCodeDigits + 1));
  CopyCut(text, buffer, static_cast<size_t>(std::max(size - 1, 1)));
}

bool QuotedPath(const char* line, char* buffer, int size) {
  if (buffer == nullptr || size <= 0) return false;
  const std::string_view text = View(line);
  const size_t opening = text.find('"');
  if (opening == std::string_view::npos) return false;
  const size_t closing = text.find('"', opening + 1);
  if (closing == std::string_view::npos) return false;
  const size_t length = std::min(closing - opening - 1, kMaxPath);
  CopyCut(text.substr(opening + 1, length), buffer, static_cast<size_t>(size));
  return true;
}

int ReadReply(ReplySource& source, char (&line)[kFtpLineSize], CUT_StringList& lines) {
  const LineResult first = ReadLine(source, line);
  if (first == LineResult::kEndless) line[0] = '\0';
  if (first != LineResult::kRead) return 0;
  const int code = ReplyCode(line);
  if (!OpensMultiLine(line)) {
    lines.AddString(line);
    return code;
  }
  char opening[kCodeDigits + 1];
  CopyCut(line, opening);
  lines.Clear();
  lines.AddString(line);
  char next[kFtpLineSize];
  for (int count = 1; count < kMaxReplyLines; ++count) {
    const LineResult result = ReadLine(source, next);
    if (result == LineResult::kEndless) return 0;
    if (result == LineResult::kNothing) return code;
    std::memcpy(line, next, sizeof line);
    lines.AddString(line);
    if (EndsMultiLine(line, opening)) return code;
  }
  return 0;
}
