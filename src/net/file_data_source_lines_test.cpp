#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "net/file_data_source.h"
#include "net/testing/file_source_fixture.h"

namespace {

class FileDataSourceLines : public FileSourceFixture {};

TEST_F(FileDataSourceLines, ReadsLinesWithTheirEnds) {
  CUT_FileDataSource& source = Holding("first\r\n\r\nthird line\r\nno\nend\rhere\r\nlast");
  EXPECT_EQ(Line(source), "first\r\n");
  EXPECT_EQ(Line(source), "\r\n");
  EXPECT_EQ(Line(source), "third line\r\n");
  EXPECT_EQ(Line(source), "no\nend\rhere\r\n");
  EXPECT_EQ(Line(source), "last");
  EXPECT_EQ(Line(source), "");
  EXPECT_EQ(Line(source), "");
}

TEST_F(FileDataSourceLines, ReadsEmptyAndTinyFiles) {
  EXPECT_EQ(Line(Holding("")), "");
  EXPECT_EQ(Bytes(Holding(""), 10), "");
  EXPECT_EQ(Line(Holding("x")), "x");
  EXPECT_EQ(Line(Holding("\n")), "\n");
  EXPECT_EQ(Line(Holding("\r\n")), "\r\n");
}

TEST_F(FileDataSourceLines, KeepsZeroBytesInLines) {
  CUT_FileDataSource& source = Holding(std::string("a\0b\r\nc\0", 7));
  EXPECT_EQ(Line(source), std::string("a\0b\r\n", 5));
  EXPECT_EQ(Line(source), std::string("c\0", 2));
}

TEST_F(FileDataSourceLines, GivesALineInPiecesToASmallBuffer) {
  CUT_FileDataSource& source = Holding("abcdefgh\r\nxy\r\n");
  EXPECT_EQ(Line(source, 5), "abcd");
  EXPECT_EQ(Line(source, 5), "efgh");
  EXPECT_EQ(Line(source, 5), "\r\n");
  EXPECT_EQ(Line(source, 5), "xy\r\n");
}

TEST_F(FileDataSourceLines, GivesALineWholeFromTheSizeThatHoldsIt) {
  EXPECT_EQ(Line(Holding("abcdef\r\nnext"), 10), "abcdef\r\n");
  EXPECT_EQ(Line(Holding("abcdef\r\nnext"), 9), "abcdef\r\n");
  EXPECT_EQ(Line(Holding("abcdef\r\nnext"), 8), "abcdef\r");
  EXPECT_EQ(Line(Holding("abcdef\r\nnext"), 7), "abcdef");
  EXPECT_EQ(Line(Holding("abcdef\r\nnext"), 2), "a");
  EXPECT_EQ(Line(Holding("abcdef\r\nnext"), 1), "");
}

TEST_F(FileDataSourceLines, GivesALineWholeWhenItFitsTheLineBuffer) {
  for (const size_t length : {4091U, 4092U, 4093U}) {
    const std::string line = std::string(length, 'x') + "\r\n";
    CUT_FileDataSource& source = Holding(line + "next\r\n");
    EXPECT_EQ(Line(source), line) << length;
    EXPECT_EQ(Line(source), "next\r\n");
    // And into a buffer of the same size.
    EXPECT_EQ(Line(Holding(line + "next\r\n"), 4096), line) << length;
  }
}

TEST_F(FileDataSourceLines, CutsALineThatExceedsTheLineBuffer) {
  const std::string x4095(4095, 'x');
  CUT_FileDataSource& source = Holding(x4095 + "\r\nnext\r\n");
  EXPECT_EQ(Line(source), x4095);
  EXPECT_EQ(Line(source), "\r\n");
  EXPECT_EQ(Line(source), "next\r\n");
  CUT_FileDataSource& longer = Holding(x4095 + "x\r\nnext\r\n");
  EXPECT_EQ(Line(longer), x4095);
  EXPECT_EQ(Line(longer), "x\r\n");
  EXPECT_EQ(Line(longer), "next\r\n");
}

TEST_F(FileDataSourceLines, ReadsOnWhereTheLineBufferEndsWithinALineEnd) {
  CUT_FileDataSource& source = Holding(std::string(4094, 'x') + "\r\nnext\r\n");
  EXPECT_EQ(Line(source), std::string(4094, 'x') + "\r");
  EXPECT_EQ(Line(source), "\nnext\r\n");
  EXPECT_EQ(Line(source), "");
}

// Whatever is read in which pieces: nothing is lost, nothing comes twice.
TEST_F(FileDataSourceLines, GivesEveryByteOnceWhateverTheSizes) {
  std::string text;
  for (const size_t length : {0U, 1U, 2U, 3U, 15U, 16U, 17U, 300U, 4094U, 5000U}) {
    text += std::string(length, static_cast<char>('a' + length % 26)) + "\r\n";
  }
  text += "\r\r\n\n\rlast";
  for (const int bufferSize : {2, 3, 4, 16, 17, 261, 4095, 4096, 4097, 100000}) {
    for (const size_t size : {2U, 3U, 4U, 5U, 16U, 261U, 4096U, 8192U}) {
      CUT_FileDataSource& source = Holding(text, bufferSize);
      std::string together;
      for (std::string line = Line(source, size); !line.empty(); line = Line(source, size)) together += line;
      EXPECT_EQ(together, text) << bufferSize << " " << size;
    }
  }
}

TEST_F(FileDataSourceLines, ReadsNoLinesWithoutALineBuffer) {
  for (const int bufferSize : {1, 0, -1, -2147483647}) {
    CUT_FileDataSource& source = Holding("abc\r\n", bufferSize);
    EXPECT_EQ(Line(source), "") << bufferSize;
    EXPECT_EQ(Bytes(source, 10), "abc\r\n");
  }
}

TEST_F(FileDataSourceLines, LosesWhatWasBufferedWhenBytesAreRead) {
  CUT_FileDataSource& source = Holding("first\r\nsecond\r\n");
  EXPECT_EQ(Line(source), "first\r\n");
  EXPECT_EQ(Bytes(source, 10), "");
  EXPECT_EQ(Line(source), "");
}

TEST_F(FileDataSourceLines, ForgetsWhatWasBufferedWhenOpenedAnew) {
  CUT_FileDataSource& source = Holding("first\r\nsecond\r\n");
  EXPECT_EQ(Line(source), "first\r\n");
  EXPECT_EQ(source.Open(kSourceRead), 0);
  EXPECT_EQ(Line(source), "first\r\n");
  source.Close();
  EXPECT_EQ(Line(source), "failed");
}

TEST_F(FileDataSourceLines, KeepsWhatWasBufferedWhenAnOpeningIsRefused) {
  CUT_FileDataSource& source = Holding("one\r\ntwo\r\n");
  EXPECT_EQ(Line(source), "one\r\n");
  for (const int mode : {3, -1}) EXPECT_EQ(source.Open(mode), -1);
  EXPECT_EQ(Line(source), "two\r\n");
}

}  // namespace
