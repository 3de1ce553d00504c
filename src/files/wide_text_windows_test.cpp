#include "files/wide_text.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "files/utf8_text.h"

namespace {

// Both in the code page of the tests, Windows-1252.
const std::string kAnsi = "caf\xE9 \x80";
const std::wstring kWide = L"caf\u00E9 \u20AC";
const std::string kUtf8 = "caf\xC3\xA9 \xE2\x82\xAC";

class Texts : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(GetACP(), 1252U); }
};

TEST_F(Texts, MeanTheSameInEachEncoding) {
  EXPECT_EQ(WideFromAnsi(kAnsi), kWide);
  EXPECT_EQ(AnsiFromWide(kWide), kAnsi);
  EXPECT_EQ(WideFromUtf8(kUtf8), kWide);
  EXPECT_EQ(Utf8FromWide(kWide), kUtf8);
  EXPECT_EQ(AnsiFromUtf8(kUtf8), kAnsi);
  EXPECT_EQ(Utf8FromAnsi(kAnsi), kUtf8);
}

TEST_F(Texts, MayBeEmptyAndHoldNullCharacters) {
  EXPECT_EQ(WideFromAnsi(""), L"");
  EXPECT_EQ(AnsiFromWide(L""), "");
  EXPECT_EQ(AnsiFromUtf8(""), "");
  EXPECT_EQ(Utf8FromAnsi(std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST_F(Texts, LoseWhatTheCodePageLacks) {
  EXPECT_EQ(AnsiFromWide(L"a\u4E2D"), "a?");
  EXPECT_EQ(AnsiFromUtf8("a\xE4\xB8\xAD"), "a?");
}

TEST_F(Texts, ReplaceWhatIsNoText) {
  EXPECT_EQ(WideFromUtf8("a\xFF"), L"a\uFFFD");
  EXPECT_EQ(Utf8FromWide(std::wstring(1, static_cast<wchar_t>(0xD800))), "\xEF\xBF\xBD");
}

}  // namespace
