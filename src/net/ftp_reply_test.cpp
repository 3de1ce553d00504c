#include "net/ftp_reply.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

TEST(ReplyCode, IsTheNumberOfTheFirstThreeCharacters) {
  EXPECT_EQ(ReplyCode("226 Transfer complete."), 226);
  EXPECT_EQ(ReplyCode("220-Hello"), 220);
  EXPECT_EQ(ReplyCode("500"), 500);
  EXPECT_EQ(ReplyCode("2260"), 226);
  EXPECT_EQ(ReplyCode("000 nothing"), 0);
  EXPECT_EQ(ReplyCode("21"), 21);
  EXPECT_EQ(ReplyCode("2x1 odd"), 2);
  EXPECT_EQ(ReplyCode("999"), 999);
  EXPECT_EQ(ReplyCode(" 226 indented"), 22);
  EXPECT_EQ(ReplyCode("  6"), 6);
  EXPECT_EQ(ReplyCode("-22 negative"), -22);
  EXPECT_EQ(ReplyCode("+22"), 22);
}

TEST(ReplyCode, IsZeroForOtherBeginnings) {
  for (const char* line : {"", "   226", "hello", "--2", "- 2", "\xFF\xFE", "\x01"}) {
    EXPECT_EQ(ReplyCode(line), 0) << line;
  }
  EXPECT_EQ(ReplyCode(nullptr), 0);
}

TEST(MultiLineReply, OpensWithADashBehindTheCode) {
  EXPECT_TRUE(OpensMultiLine("220-Welcome"));
  EXPECT_TRUE(OpensMultiLine("220-"));
  EXPECT_FALSE(OpensMultiLine("220 Welcome"));
  EXPECT_FALSE(OpensMultiLine("220"));
  EXPECT_FALSE(OpensMultiLine("22-0"));
  EXPECT_FALSE(OpensMultiLine(""));
  EXPECT_FALSE(OpensMultiLine(nullptr));
}

TEST(MultiLineReply, EndsWithTheSameCodeAndABlank) {
  EXPECT_TRUE(EndsMultiLine("220 ready", "220-Welcome"));
  EXPECT_TRUE(EndsMultiLine("220 ", "220-Welcome"));
  EXPECT_TRUE(EndsMultiLine("220 ready", "220"));
  EXPECT_FALSE(EndsMultiLine("220-more", "220-Welcome"));
  EXPECT_FALSE(EndsMultiLine("220", "220-Welcome"));
  EXPECT_FALSE(EndsMultiLine("221 ready", "220-Welcome"));
  EXPECT_FALSE(EndsMultiLine(" 220 indented", "220-Welcome"));
  EXPECT_FALSE(EndsMultiLine("", "220-Welcome"));
  EXPECT_FALSE(EndsMultiLine("22 0", "22"));
  EXPECT_FALSE(EndsMultiLine(nullptr, "220-Welcome"));
  EXPECT_FALSE(EndsMultiLine("220 ready", nullptr));
}

// The buffer is as large as the size says, so that the sanitizers see a byte too much.
std::string ReplyText(const char* line, int size) {
  std::vector<char> buffer(static_cast<size_t>(size), '#');
  CopyReplyText(line, buffer.data(), size);
  return std::string(buffer.begin(), std::find(buffer.begin(), buffer.end(), '\0'));
}

TEST(ReplyText, BeginsWithTheFifthCharacter) {
  EXPECT_EQ(ReplyText("257 \"/maps\" created", 100), "\"/maps\" created");
  EXPECT_EQ(ReplyText("230-Hello", 100), "Hello");
  EXPECT_EQ(ReplyText("230 ", 100), "");
  EXPECT_EQ(ReplyText("230", 100), "");
  EXPECT_EQ(ReplyText("2", 100), "");
  EXPECT_EQ(ReplyText("", 100), "");
  EXPECT_EQ(ReplyText(nullptr, 100), "");
}

TEST(ReplyText, LosesOneCharacterMoreThanItMust) {
  EXPECT_EQ(ReplyText("230 abcdef", 9), "abcdef");
  EXPECT_EQ(ReplyText("230 abcdef", 8), "abcdef");
  EXPECT_EQ(ReplyText("230 abcdef", 7), "abcde");
  EXPECT_EQ(ReplyText("230 abcdef", 3), "a");
  EXPECT_EQ(ReplyText("230 abcdef", 2), "");
  EXPECT_EQ(ReplyText("230 abcdef", 1), "");
  EXPECT_EQ(ReplyText(("227 " + std::string(200, 'n')).c_str(), 100), std::string(98, 'n'));
}

TEST(ReplyText, NeedsABuffer) {
  char untouched[] = "abc";
  CopyReplyText("230 text", untouched, 0);
  CopyReplyText("230 text", untouched, -5);
  EXPECT_STREQ(untouched, "abc");
  CopyReplyText("230 text", nullptr, 100);
}

std::string Path(const char* line, int size = 300) {
  std::vector<char> buffer(static_cast<size_t>(size), '\0');
  return QuotedPath(line, buffer.data(), size) ? buffer.data() : "none";
}

TEST(QuotedPath, LiesBetweenTheFirstTwoQuotes) {
  EXPECT_EQ(Path("257 \"/\" is the current directory"), "/");
  EXPECT_EQ(Path("257 \"/maps and more\" is your current location"), "/maps and more");
  EXPECT_EQ(Path("257 \"\" is odd"), "");
  EXPECT_EQ(Path("257 \"/a\" and \"/b\""), "/a");
  EXPECT_EQ(Path("257 \"/a\"\"b\" is quoted twice"), "/a");
}

TEST(QuotedPath, IsMissingWithoutTwoQuotes) {
  EXPECT_EQ(Path("257 / is the current directory"), "none");
  EXPECT_EQ(Path("257 \"/maps"), "none");
  EXPECT_EQ(Path(""), "none");
  EXPECT_EQ(Path(nullptr), "none");
  char untouched[] = "abc";
  EXPECT_FALSE(QuotedPath("257 \"/maps", untouched, 4));
  EXPECT_FALSE(QuotedPath("257 \"/maps\"", untouched, 0));
  EXPECT_FALSE(QuotedPath("257 \"/maps\"", nullptr, 100));
  EXPECT_STREQ(untouched, "abc");
}

TEST(QuotedPath, IsCutToItsBounds) {
  const std::string name(400, 'n');
  EXPECT_EQ(Path(("257 \"" + name + "\"").c_str(), 1000), name.substr(0, 260));
  EXPECT_EQ(Path(("257 \"" + name + "\"").c_str(), 261), name.substr(0, 260));
  EXPECT_EQ(Path(("257 \"" + name + "\"").c_str(), 260), name.substr(0, 259));
  EXPECT_EQ(Path("257 \"/maps\"", 3), "/m");
  EXPECT_EQ(Path("257 \"/maps\"", 1), "");
}

// Gives a text as a socket would: one line, or a piece of it, at a time.
class TextSource : public ReplySource {
 public:
  explicit TextSource(std::string text) : m_strText(std::move(text)) {}

  int NextLine(char* buffer, size_t size) override {
    const std::string_view room = std::string_view(m_strText).substr(m_nPlace, size - 1);
    if (room.empty()) return 0;
    const size_t count = std::min(room.find('\n'), room.size() - 1) + 1;
    room.copy(buffer, count);
    buffer[count] = '\0';
    m_nPlace += count;
    return static_cast<int>(count);
  }

  std::string Rest() const { return m_strText.substr(m_nPlace); }

 private:
  std::string m_strText;
  size_t m_nPlace = 0;
};

struct Reply {
  int code;
  std::string line;
  std::vector<std::string> lines;
  std::string rest;
};

Reply Read(const std::string& text, std::vector<std::string> before = {}) {
  TextSource source(text);
  CUT_StringList lines;
  for (const std::string& line : before) lines.AddString(line.c_str());
  char line[kFtpLineSize] = "what was there";
  Reply reply;
  reply.code = ReadReply(source, line, lines);
  reply.line = line;
  for (int i = 0; i < lines.GetCount(); ++i) reply.lines.emplace_back(lines.GetString(i));
  reply.rest = source.Rest();
  return reply;
}

using Lines = std::vector<std::string>;

TEST(ReadReply, TakesASingleLine) {
  const Reply reply = Read("226 Done.\r\n331 next", {"earlier"});
  EXPECT_EQ(reply.code, 226);
  EXPECT_EQ(reply.line, "226 Done.");
  EXPECT_EQ(reply.lines, Lines({"earlier", "226 Done."}));
  EXPECT_EQ(reply.rest, "331 next");
}

TEST(ReadReply, TakesSeveralLinesAsOne) {
  const Reply reply = Read("220-Welcome\r\n220-more\r\n220 ready\r\n331 next", {"earlier"});
  EXPECT_EQ(reply.code, 220);
  EXPECT_EQ(reply.line, "220 ready");
  EXPECT_EQ(reply.lines, Lines({"220-Welcome", "220-more", "220 ready"}));
  EXPECT_EQ(reply.rest, "331 next");
}

TEST(ReadReply, ToleratesAnythingBetweenTheLines) {
  const Reply reply =
      Read("230-Hello\r\n 230 looks like the end\r\n\r\n331 other\r\nplain\n230-\r\n230\r\n230 \r\n");
  EXPECT_EQ(reply.code, 230);
  EXPECT_EQ(reply.line, "230 ");
  EXPECT_EQ(reply.lines,
            Lines({"230-Hello", " 230 looks like the end", "", "331 other", "plain", "230-", "230", "230 "}));
}

TEST(ReadReply, TakesLinesThatEndWithALineFeedAlone) {
  const Reply reply = Read("230-Hello\n\n230 in\n331 next");
  EXPECT_EQ(reply.code, 230);
  EXPECT_EQ(reply.lines, Lines({"230-Hello", "", "230 in"}));
  EXPECT_EQ(reply.rest, "331 next");
}

TEST(ReadReply, IsZeroWhenNothingComes) {
  const Reply reply = Read("", {"earlier"});
  EXPECT_EQ(reply.code, 0);
  EXPECT_EQ(reply.line, "");
  EXPECT_EQ(reply.lines, Lines({"earlier"}));
}

TEST(ReadReply, TakesWhatCameBeforeTheEnd) {
  EXPECT_EQ(Read("226").code, 226);
  EXPECT_EQ(Read("226 half a li").line, "226 half a li");
  EXPECT_EQ(Read("226 " + std::string(300, 'x')).code, 226);
  const Reply reply = Read("230-Hello\r\nand nothing else\r\n");
  EXPECT_EQ(reply.code, 230);
  EXPECT_EQ(reply.line, "and nothing else");
  EXPECT_EQ(reply.lines, Lines({"230-Hello", "and nothing else"}));
}

TEST(ReadReply, KeepsTheBeginningOfALongLineAndStaysInStep) {
  for (const size_t length : {250U, 253U, 254U, 255U, 256U, 257U, 258U, 514U, 600U, 10000000U}) {
    const std::string line = "226 " + std::string(length, 'x');
    const Reply reply = Read(line + "\r\n331 next");
    EXPECT_EQ(reply.code, 226);
    // A CR that is the 260th byte is trimmed like one before its LF.
    EXPECT_EQ(reply.line, line.substr(0, 260)) << length;
    EXPECT_EQ(reply.rest, "331 next") << length;
  }
}

TEST(ReadReply, IsNotEndedByTheMiddleOfALongLine) {
  const std::string before = "220-" + std::string(256, 'x');
  const Reply reply = Read(before + "220 not yet\r\n220 now\r\n331 next");
  EXPECT_EQ(reply.lines, Lines({before, "220 now"}));
  EXPECT_EQ(reply.rest, "331 next");
}

constexpr int kForEver = -1;

// Says one line, or piece of a line, some times before the next one.
class RepeatingSource : public ReplySource {
 public:
  using Said = std::pair<std::string, int>;
  explicit RepeatingSource(std::vector<Said> says) : m_vSays(std::move(says)) {}

  int NextLine(char* buffer, size_t size) override {
    while (m_nSaid < m_vSays.size() && m_vSays[m_nSaid].second == 0) ++m_nSaid;
    if (m_nSaid == m_vSays.size()) return 0;
    auto& [line, times] = m_vSays[m_nSaid];
    if (times != kForEver) --times;
    const size_t count = std::min(line.size(), size - 1);
    std::memcpy(buffer, line.data(), count);
    buffer[count] = '\0';
    return static_cast<int>(count);
  }

 private:
  std::vector<Said> m_vSays;
  size_t m_nSaid = 0;
};

int CodeOf(std::vector<RepeatingSource::Said> says) {
  RepeatingSource source(std::move(says));
  CUT_StringList lines;
  char line[kFtpLineSize] = "what was there";
  const int code = ReadReply(source, line, lines);
  EXPECT_LE(lines.GetCount(), kMaxReplyLines);
  if (lines.GetCount() == 0) {
    EXPECT_STREQ(line, "");
  }
  return code;
}

TEST(ReadReply, GivesUpAReplyOfTooManyLines) {
  EXPECT_EQ(CodeOf({{"220-again\r\n", kForEver}}), 0);
  EXPECT_EQ(CodeOf({{"220-again\r\n", kMaxReplyLines - 1}, {"220 now\r\n", 1}}), 220);
  EXPECT_EQ(CodeOf({{"220-again\r\n", kMaxReplyLines}, {"220 now\r\n", 1}}), 0);
}

TEST(ReadReply, GivesUpALineOfTooManyPieces) {
  const std::string piece = "220 " + std::string(256, 'x');
  EXPECT_EQ(CodeOf({{piece, kForEver}}), 0);
  EXPECT_EQ(CodeOf({{piece, kMaxReplyLines}, {"\r\n", 1}}), 220);
  EXPECT_EQ(CodeOf({{piece, kMaxReplyLines + 1}, {"\r\n", 1}}), 0);
  EXPECT_EQ(CodeOf({{"220-Hello\r\n", 1}, {piece, kForEver}}), 0);
}

TEST(ReadReply, EndsALineAtAZeroByte) {
  const Reply reply = Read(std::string("226 a\0b\r\n331 next", 17));
  EXPECT_EQ(reply.code, 226);
  EXPECT_EQ(reply.line, "226 a");
  EXPECT_EQ(reply.rest, "331 next");
}

}  // namespace
