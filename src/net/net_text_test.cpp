#include "net/net_text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

std::string Trimmed(std::string text) {
  TrimLineEnd(text.data());
  return text.c_str();
}

TEST(TrimLineEnd, LooksAtTheLastTwoCharacters) {
  EXPECT_EQ(Trimmed("abc\r\n"), "abc");
  EXPECT_EQ(Trimmed("abc\n"), "abc");
  EXPECT_EQ(Trimmed("abc\r"), "abc");
  EXPECT_EQ(Trimmed("abc\n\r"), "abc");
  EXPECT_EQ(Trimmed("abc"), "abc");
  EXPECT_EQ(Trimmed("abc\r\n\r\n"), "abc\r\n");
  EXPECT_EQ(Trimmed("a\r\nbc"), "a\r\nbc");
  EXPECT_EQ(Trimmed("abc "), "abc ");
}

TEST(TrimLineEnd, CutsAlsoWhereOnlyTheSecondToLastIsOne) {
  EXPECT_EQ(Trimmed("ab\rc"), "ab");
  EXPECT_EQ(Trimmed("ab\nc"), "ab");
}

TEST(TrimLineEnd, TakesShortTexts) {
  EXPECT_EQ(Trimmed(""), "");
  EXPECT_EQ(Trimmed("\n"), "");
  EXPECT_EQ(Trimmed("\r\n"), "");
  EXPECT_EQ(Trimmed("a"), "a");
  TrimLineEnd(nullptr);
}

TEST(CountTokens, CountsRunsBetweenDelimiters) {
  EXPECT_EQ(CountTokens("a b c", " "), 3);
  EXPECT_EQ(CountTokens("  a   bc  ", " "), 2);
  EXPECT_EQ(CountTokens("a,b;c", ",;"), 3);
  EXPECT_EQ(CountTokens("abc", " "), 1);
  EXPECT_EQ(CountTokens("a\tb", " "), 1);
}

TEST(CountTokens, FindsNoneInDelimitersOnly) {
  EXPECT_EQ(CountTokens("", " "), 0);
  EXPECT_EQ(CountTokens("    ", " "), 0);
  EXPECT_EQ(CountTokens(",;,", ",;"), 0);
  EXPECT_EQ(CountTokens(nullptr, " "), 0);
}

TEST(CountTokens, WithoutDelimitersTheTextIsOne) {
  EXPECT_EQ(CountTokens("a b", ""), 1);
  EXPECT_EQ(CountTokens("a b", nullptr), 1);
  EXPECT_EQ(CountTokens("", ""), 0);
}

TEST(HasCommandBreak, FindsLineEndsAnywhere) {
  EXPECT_TRUE(HasCommandBreak("a\r\nDELE b"));
  EXPECT_TRUE(HasCommandBreak("\n"));
  EXPECT_TRUE(HasCommandBreak("a\r"));
  EXPECT_FALSE(HasCommandBreak("a b\t;\xE9\x7F"));
  EXPECT_FALSE(HasCommandBreak(""));
  EXPECT_FALSE(HasCommandBreak(nullptr));
}

TEST(FormatCommand, RefusesMoreThan260Characters) {
  char buffer[kFtpLineSize];
  EXPECT_TRUE(FormatCommand(buffer, "CWD %s\r\n", "maps"));
  EXPECT_STREQ(buffer, "CWD maps\r\n");
  EXPECT_TRUE(FormatCommand(buffer, "PORT %s,%d,%d\r\n", "127,0,0,1", 39, 16));
  EXPECT_STREQ(buffer, "PORT 127,0,0,1,39,16\r\n");

  EXPECT_TRUE(FormatCommand(buffer, "%s", ""));
  EXPECT_STREQ(buffer, "");

  const std::string fits(260 - std::strlen("CWD \r\n"), 'n');
  EXPECT_TRUE(FormatCommand(buffer, "CWD %s\r\n", fits.c_str()));
  EXPECT_EQ(buffer, "CWD " + fits + "\r\n");
  for (const std::string& name : {fits + "n", fits + "nnnnnn", std::string(100000, 'n')}) {
    EXPECT_FALSE(FormatCommand(buffer, "CWD %s\r\n", name.c_str()));
    EXPECT_STREQ(buffer, "");
  }
}

TEST(CopyCut, KeepsWhatFitsBeforeTheTerminator) {
  char field[] = "######";
  CopyCut("abc", field, 5);
  EXPECT_STREQ(field, "abc");
  CopyCut("abcdefgh", field, 5);
  EXPECT_STREQ(field, "abcd");
  EXPECT_EQ(field[5], '#');
  CopyCut("abc", field, 1);
  EXPECT_STREQ(field, "");
  CopyCut("abcdefgh", field);
  EXPECT_STREQ(field, "abcdef");
  CopyCut(field + 2, field);
  EXPECT_STREQ(field, "cdef") << "from within itself";
  CopyCut(std::string_view(), field);
  EXPECT_STREQ(field, "");
}

TEST(Wipe, LeavesNothing) {
  char text[] = "secret";
  Wipe(text, 3);
  EXPECT_EQ(std::string(text, sizeof text), std::string("\0\0\0ret\0", 7));
  Wipe(text, 0);
  EXPECT_EQ(text[3], 'r');
}

}  // namespace
