#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>

#include "net/data_source.h"
#include "net/file_data_source.h"
#include "support/temporary_folder.h"

namespace {

// A text in memory that remembers what was asked of it.
class TextSource : public CUT_DataSource {
 public:
  explicit TextSource(std::string text) : m_strText(std::move(text)) {}

  CUT_DataSource* Clone() override { return new TextSource(m_strText); }
  int Open(int) override { return 0; }
  int Close() override { return 0; }
  int ReadLine(char*, size_t) override { return -1; }
  int WriteLine(const char*) override { return -1; }
  int Write(const char*, size_t) override { return -1; }

  int Read(char* buffer, size_t count) override {
    if (m_nReadsLeft-- == 0) return -1;
    const size_t place = std::min(static_cast<size_t>(m_nPlace), m_strText.size());
    const size_t read = std::min({count, m_nMostRead, m_strText.size() - place});
    std::memcpy(buffer, m_strText.data() + place, read);
    m_nPlace += static_cast<long>(read);
    return static_cast<int>(read);
  }

  long Seek(long offset, int origin) override {
    EXPECT_EQ(origin, 0);
    if (offset < 0) return -1;
    m_nPlace = offset;
    return m_nPlace;
  }

  long m_nPlace = 0;
  size_t m_nMostRead = SIZE_MAX;
  int m_nReadsLeft = -1;  // negative: without limit

 private:
  std::string m_strText;
};

long FindIn(const std::string& text, const char* wanted, long start = 0, int caseSensitive = 1,
            size_t maxRange = 0) {
  TextSource source(text);
  return source.Find(wanted, start, caseSensitive, maxRange);
}

TEST(Find, TellsThePositionFromTheBeginning) {
  EXPECT_EQ(FindIn("xxabcxabcx", "abc"), 2);
  EXPECT_EQ(FindIn("xxabcxabcx", "abc", 2), 2);
  EXPECT_EQ(FindIn("xxabcxabcx", "abc", 3), 6);
  EXPECT_EQ(FindIn("xxabcxabcx", "abc", 7), -1);
  EXPECT_EQ(FindIn("xxabcxabc", "xabc", 3), 5);
}

TEST(Find, RespectsOrIgnoresLetterCase) {
  EXPECT_EQ(FindIn("xabcx", "ABC", 0, 0), 1);
  EXPECT_EQ(FindIn("xABCx", "aBc", 0, 0), 1);
  EXPECT_EQ(FindIn("xabcx", "ABC", 0, 1), -1);
  EXPECT_EQ(FindIn("a-z.", "A-Z", 0, 0), 0);
  EXPECT_EQ(FindIn("x\xE9x.", "\xC9", 0, 0), -1);
}

TEST(Find, FailsWhereTheTextIsAllThereIs) {
  EXPECT_EQ(FindIn("abc", "abc"), -1);
  EXPECT_EQ(FindIn("abcx", "abc"), 0);
  EXPECT_EQ(FindIn("xabc", "abc"), 1);
  EXPECT_EQ(FindIn("xabc", "abc", 1), -1);
  EXPECT_EQ(FindIn("", "abc"), -1);
}

TEST(Find, FindsWhatStraddlesTwoChunks) {
  for (const size_t place : {4089U, 4090U, 4091U, 4092U, 4093U, 4094U, 4095U, 8184U, 8187U, 20000U}) {
    const std::string text = std::string(place, '.') + "abcd" + std::string(50, '.');
    EXPECT_EQ(FindIn(text, "abcd"), static_cast<long>(place));
    EXPECT_EQ(FindIn(text, "ABCD", 7, 0), static_cast<long>(place));
  }
}

TEST(Find, FindsInASourceThatReadsLittleAtATime) {
  TextSource source(std::string(100, '.') + "abcd" + std::string(50, '.'));
  source.m_nMostRead = 5;
  EXPECT_EQ(source.Find("abcd", 0, 1, 0), 100);
}

TEST(Find, StopsAtTheRange) {
  const std::string text = std::string(5000, '.') + "abc.";
  EXPECT_EQ(FindIn(text, "abc", 0, 1, 5000), 5000);
  EXPECT_EQ(FindIn(text, "abc", 0, 1, 4999), -1);
  EXPECT_EQ(FindIn(text, "abc", 4000, 1, 1000), 5000);
  EXPECT_EQ(FindIn(text, "abc", 4000, 1, 999), -1);
  EXPECT_EQ(FindIn(text, "abc", 0, 1, 3), -1);
  EXPECT_EQ(FindIn("..abc.", "abc", 0, 1, 3), 2);
  EXPECT_EQ(FindIn("abc.", "abc", 0, 1, 2), -1);
  EXPECT_EQ(FindIn("abc.", "abc", 0, 1, SIZE_MAX), 0);
}

TEST(Find, DoesNotReadBeyondTheRange) {
  TextSource source(std::string(100000, '.'));
  EXPECT_EQ(source.Find("abc", 0, 1, 4000), -1);
  EXPECT_LE(source.m_nPlace, 4095);
}

TEST(Find, RefusesTextsOfNothingOrTooMuch) {
  EXPECT_EQ(FindIn("abc", nullptr), -1);
  EXPECT_EQ(FindIn("abc", ""), -1);
  const std::string longText(4094, 'a');
  EXPECT_EQ(FindIn("." + longText, longText.c_str()), 1);
  // It is allowed, but no chunk is longer.
  EXPECT_EQ(FindIn(longText + "aaa", (longText + "a").c_str()), -1);
  EXPECT_EQ(FindIn(longText + "aaa", (longText + "aa").c_str()), -1);
  EXPECT_EQ(FindIn("abc", std::string(1000000, 'a').c_str()), -1);
}

TEST(Find, RefusesStartsOutOfRange) {
  EXPECT_EQ(FindIn("abcd", "abc", -1), -1);
  EXPECT_EQ(FindIn("abcd", "abc", -5), -1);
  EXPECT_EQ(FindIn("abcd", "abc", LONG_MIN), -1);
  EXPECT_EQ(FindIn("abcd", "abc", 4), -1);
  EXPECT_EQ(FindIn("abcd", "abc", 2147483647), -1);
  EXPECT_EQ(FindIn("abcd", "abc", LONG_MAX), -1);
}

// Holds the same text wherever it is read.
class SameEverywhere : public TextSource {
 public:
  using TextSource::TextSource;
  long Seek(long offset, int) override {
    m_nPlace = 0;
    return offset;
  }
};

TEST(Find, FindsNothingAtAPositionWithoutANumber) {
  SameEverywhere source("..abc.");
  EXPECT_EQ(source.Find("abc", 2147483645, 1, 0), 2147483647);
  EXPECT_EQ(source.Find("abc", 2147483646, 1, 0), -1);
}

TEST(Find, FailsWhenTheSourceDoes) {
  TextSource source(std::string(10000, '.') + "abc.");
  source.m_nReadsLeft = 2;
  EXPECT_EQ(source.Find("abc", 0, 1, 0), -1);
}

TEST(Find, LooksBehindZeroBytes) {
  EXPECT_EQ(FindIn(std::string("\0\0abc.", 6), "abc"), 2);
}

TEST(Find, WorksOnFiles) {
  const TemporaryFolder folder;
  WriteFile(folder.Path("a"), std::string(4093, '.') + "Abcd\r\nlast line");
  CUT_FileDataSource source(folder.Path("a").c_str(), kLineBufferSize);
  ASSERT_EQ(source.Open(kSourceRead), 0);
  EXPECT_EQ(source.Find("abcd", 0, 0, 0), 4093);
  EXPECT_EQ(source.Find("abcd", 0, 1, 0), -1);
  EXPECT_EQ(source.Find("line", 100, 1, 0), 4104);
}

}  // namespace
