#include "net/string_list.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(StringList, KeepsCopiesInOrder) {
  CUT_StringList list;
  char text[] = "first";
  EXPECT_EQ(list.AddString(text), 1);
  text[0] = '?';
  EXPECT_EQ(list.AddString("second"), 1);
  EXPECT_EQ(list.AddString(""), 1);
  EXPECT_EQ(list.AddString(nullptr), 1);
  EXPECT_EQ(list.GetCount(), 4);
  EXPECT_STREQ(list.GetString(0), "first");
  EXPECT_STREQ(list.GetString(1), "second");
  EXPECT_STREQ(list.GetString(2), "");
  EXPECT_STREQ(list.GetString(3), "");
}

TEST(StringList, HasNothingOutsideItsRange) {
  CUT_StringList list;
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(list.GetString(0), nullptr);
  list.AddString("only");
  EXPECT_EQ(list.GetString(1), nullptr);
  EXPECT_EQ(list.GetString(-1), nullptr);
}

TEST(StringList, IsEmptyAndUsableAfterClear) {
  CUT_StringList list;
  list.Clear();
  list.AddString("a");
  list.AddString("b");
  list.Clear();
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(list.GetString(0), nullptr);
  list.AddString("c");
  EXPECT_EQ(list.GetCount(), 1);
  EXPECT_STREQ(list.GetString(0), "c");
}

TEST(StringList, HoldsManyLines) {
  CUT_StringList list;
  for (int i = 0; i < 200000; ++i) list.AddString(std::to_string(i).c_str());
  EXPECT_EQ(list.GetCount(), 200000);
  EXPECT_STREQ(list.GetString(199999), "199999");
}

}  // namespace
