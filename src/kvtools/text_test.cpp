#include <gtest/gtest.h>

#include "kvtools/ascii.h"
#include "kvtools/kvtools.h"

namespace {

using Parts = std::vector<std::string>;

TEST(LowerAscii, ChangesLettersOfAsciiOnly) {
  EXPECT_EQ(LowerAscii("AZ az @[`{ 09"), "az az @[`{ 09");
  EXPECT_EQ(LowerAscii("CAF\xC9 \xC3\x89"), "caf\xC9 \xC3\x89");
  EXPECT_EQ(LowerAscii(std::string("A\0B", 3)), std::string("a\0b", 3));
}

TEST(ParseString, SplitsAtEverySeparator) {
  struct Case {
    const char* text;
    Parts parts;
  };
  const Case cases[] = {
      {"", {}},
      {"a", {"a"}},
      {"a|b|c", {"a", "b", "c"}},
      {"a||b", {"a", "", "b"}},
      {"|a", {"", "a"}},
      {"a|", {"a", ""}},
      {"|", {"", ""}},
  };
  for (const Case& each : cases) {
    Parts parts = {"left over"};
    EXPECT_EQ(KVT_ParseString(each.text, '|', parts), static_cast<int>(each.parts.size())) << each.text;
    EXPECT_EQ(parts, each.parts) << each.text;
  }
}

TEST(StringToDouble, ConvertsWholeNumbersOfAnyForm) {
  struct Case {
    const char* text;
    double value;
  };
  const Case cases[] = {{"12", 12.0},     {"-0.5", -0.5},      {"+7.25", 7.25},
                        {" 9.1 ", 9.1},   {"1e3", 1000.0},     {".5", 0.5},
                        {"5.", 5.0},      {"-1.5E-2", -0.015}, {"45.123456789012", 45.123456789012},
                        {"\t8\r\n", 8.0}, {"0", 0.0}};
  for (const Case& each : cases) {
    double value = -1.0;
    EXPECT_EQ(KVT_StringToDouble(each.text, &value), 1) << each.text;
    EXPECT_DOUBLE_EQ(value, each.value) << each.text;
  }
}

TEST(StringToDouble, LeavesTheValueAloneForAnythingElse) {
  for (const char* text : {"",     " ",   "12abc", "abc", "1e400", "-1e400", "nan", "NaN", "inf", "-inf",
                           "0x10", "1,5", "1 2",   "+-1", "--1",   "+",      "-",   ".",   "e5",  "9\xB0"}) {
    double value = 42.0;
    EXPECT_EQ(KVT_StringToDouble(text, &value), 0) << text;
    EXPECT_EQ(value, 42.0) << text;
  }
  double value = 42.0;
  EXPECT_EQ(KVT_StringToDouble(nullptr, &value), 0);
  EXPECT_EQ(value, 42.0);
}

}  // namespace
