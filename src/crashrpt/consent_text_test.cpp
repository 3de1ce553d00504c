#include "crashrpt/consent_text.h"

#include <gtest/gtest.h>

namespace {

TEST(ConsentText, NamesEverythingWithItsValue) {
  EXPECT_EQ(DescribeContents({{"User Data - Name", "Ada"}, {"RAM_Info", "8 GB"}, {"Tel", ""}}, true),
            "What happened, where in the program, when, and in which version\r\n"
            "User Data - Name: Ada\r\n"
            "RAM_Info: 8 GB\r\n"
            "Tel: \r\n"
            "Part of the program's memory at that moment (the stacks of its threads), with what it was "
            "working on: paths, names, texts that you typed\r\n");
}

TEST(ConsentText, PromisesNoMemoryWhereThereIsNone) {
  EXPECT_EQ(DescribeContents({}, false),
            "What happened, where in the program, when, and in which version\r\n");
}

TEST(ConsentText, KeepsEveryPropertyInOneLine) {
  const std::string text = DescribeContents({{"a", "1\n2\t3"}, {"b", std::string(61, 'x')}}, false);
  EXPECT_NE(text.find("\r\na: 1 2 3\r\nb: " + std::string(60, 'x') + "...\r\n"), std::string::npos) << text;
}

}  // namespace
