#include "publish/entry_date.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

FtpDirEntry Entry(int year, int month, int day, int hour, int minute) {
  FtpDirEntry entry;
  entry.year = year;
  entry.month = month;
  entry.day = day;
  entry.hour = hour;
  entry.minute = minute;
  return entry;
}

TEST(EntryDate, HasAtLeastTwoDigitsEach) {
  EXPECT_EQ(FormatEntryDate(Entry(2014, 3, 7, 10, 5)), "2014/03/07 10:05");
  EXPECT_EQ(FormatEntryDate(Entry(1999, 12, 31, 24, 59)), "1999/12/31 24:59");
  EXPECT_EQ(FormatEntryDate(Entry(5, 1, 1, 0, 0)), "05/01/01 00:00");
  EXPECT_EQ(FormatEntryDate({}), "00/00/00 00:00");
}

TEST(EntryDate, HoldsAnyNumberThatAServerMakesUp) {
  const int least = std::numeric_limits<int>::min();
  EXPECT_EQ(FormatEntryDate(Entry(least, least, least, least, least)),
            "-2147483648/-2147483648/-2147483648 -2147483648:-2147483648");
}

}  // namespace
