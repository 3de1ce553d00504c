#include "net/ftp_listing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "net/testing/data_file.h"

namespace {

constexpr int kCurrentYear = 2026;

// "\xHH" is a byte, "\\" a backslash.
std::string WithoutEscapes(const std::string& text) {
  std::string result;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      result += text[i];
    } else if (text.at(i + 1) == 'x') {
      result += static_cast<char>(std::stoi(text.substr(i + 2, 2), nullptr, 16));
      i += 3;
    } else {
      result += text.at(++i);
    }
  }
  return result;
}

// The text behind the mark and its blank.
std::string Behind(const std::string& line) {
  return line.size() < 2 ? "" : WithoutEscapes(line.substr(2));
}

// As the data file has it: nothing follows the time when there is no name.
std::string Told(const FtpDirEntry& entry) {
  char text[100];
  std::snprintf(text, sizeof text, "%c %d %04d-%02d-%02d %02d:%02d", entry.directory == 1 ? 'd' : 'f',
                entry.size, entry.year, entry.month, entry.day, entry.hour, entry.minute);
  return entry.name[0] == '\0' ? text : std::string(text) + " " + entry.name;
}

// Every byte set, so that a member left alone shows.
FtpDirEntry Soiled() {
  FtpDirEntry entry;
  entry.size = entry.day = entry.month = entry.year = entry.hour = entry.minute = entry.directory = 1234567;
  std::memset(entry.name, '#', sizeof entry.name);
  return entry;
}

FtpDirEntry ParseUnix(const std::string& line) {
  FtpDirEntry entry = Soiled();
  ParseUnixListLine(line.c_str(), kCurrentYear, entry);
  return entry;
}

FtpDirEntry ParseDos(const std::string& line) {
  FtpDirEntry entry = Soiled();
  ParseDosListLine(line.c_str(), entry);
  return entry;
}

TEST(FtpListing, UnderstandsWhatServersPrint) {
  char style = ' ';
  std::string line;
  int samples = 0;
  for (const std::string& data : TestDataLines("listing_samples.txt")) {
    if (data.empty() || data[0] == '#') continue;
    if (data[0] == 'U' || data[0] == 'D') {
      style = data[0];
      line = Behind(data);
      continue;
    }
    ASSERT_EQ(data[0], '=') << data;
    ASSERT_NE(style, ' ') << "no line before " << data;
    EXPECT_EQ(Told(style == 'U' ? ParseUnix(line) : ParseDos(line)), Behind(data)) << line;
    style = ' ';
    ++samples;
  }
  EXPECT_GE(samples, 130);
}

TEST(FtpListing, TakesTheYearOfALineWithATimeFromTheCaller) {
  FtpDirEntry entry;
  for (const int year : {1999, 2024, 2026}) {
    ParseUnixListLine("-rw-r--r-- 1 ann users 1 Dec 31 23:59 a", year, entry);
    EXPECT_EQ(entry.year, year);
  }
}

TEST(FtpListing, LeavesTheLinkAlone) {
  FtpDirEntry next;
  FtpDirEntry entry;
  entry.next = &next;
  ParseUnixListLine("-rw-r--r-- 1 ann users 1 Dec 31 23:59 a", kCurrentYear, entry);
  EXPECT_EQ(entry.next, &next);
  ParseDosListLine("03-07-26 02:05PM 1 a", entry);
  EXPECT_EQ(entry.next, &next);
}

TEST(FtpListing, CutsNamesToTheirField) {
  for (const size_t length : {258U, 259U, 260U, 261U, 10000U}) {
    const std::string name(length, 'n');
    const std::string kept(std::min<size_t>(length, 259), 'n');
    EXPECT_EQ(ParseUnix("-rw-r--r-- 1 ann users 1 Dec 31 23:59 " + name).name, kept) << length;
    EXPECT_EQ(ParseDos("03-07-26 02:05PM 1 " + name).name, kept) << length;
  }
}

TEST(FtpListing, SurvivesLongLinesOfOneKind) {
  for (const char c : {' ', 'd', '9', '-', ':', 'P', '\t', '\x80', '\xFF'}) {
    const std::string line(10000, c);
    EXPECT_STREQ(ParseUnix(line).name, "") << c;
    EXPECT_STREQ(ParseDos(line).name, "") << c;
  }
  EXPECT_EQ(ParseUnix(std::string(10000, 'd')).directory, 1);
  EXPECT_EQ(ParseUnix(std::string(10000, ' ') + "1 2 3 4 Mar 6 2007 8").year, 2007);
  std::string manyFields;
  for (int i = 0; i < 5000; ++i) manyFields += "1 ";
  EXPECT_EQ(std::strlen(ParseUnix(manyFields).name), 259U);
  EXPECT_EQ(ParseDos(manyFields).size, 1);
}

TEST(FtpListing, TakesNoLineForAnEmptyOne) {
  FtpDirEntry entry = Soiled();
  ParseUnixListLine(nullptr, kCurrentYear, entry);
  EXPECT_EQ(Told(entry), "f 0 1900-01-00 00:00");
  entry = Soiled();
  ParseDosListLine(nullptr, entry);
  EXPECT_EQ(Told(entry), "f 0 2000-00-00 00:00");
}

}  // namespace
