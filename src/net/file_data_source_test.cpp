#include "net/file_data_source.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "net/testing/file_source_fixture.h"
#include "support/temporary_folder.h"
#ifndef _WIN32
#include "support/file_size_limit.h"
#endif

namespace {

class FileDataSource : public FileSourceFixture {};

TEST_F(FileDataSource, OpensForReadingWhatIsThere) {
  CUT_FileDataSource source(m_strPath.c_str(), kLineBufferSize);
  EXPECT_EQ(source.Open(kSourceRead), -1);
  EXPECT_FALSE(FileExists(m_strPath));
  Make("abc");
  EXPECT_EQ(source.Open(kSourceRead), 0);
  EXPECT_EQ(Bytes(source, 10), "abc");
  EXPECT_EQ(source.Write("x", 1), -1);
}

TEST_F(FileDataSource, TruncatesWhenOpenedForWriting) {
  CUT_FileDataSource source(Make("abc").c_str(), kLineBufferSize);
  EXPECT_EQ(source.Open(kSourceWrite), 0);
  EXPECT_EQ(ReadFile(m_strPath), "");
  EXPECT_EQ(source.Write("xy", 2), 2);
  EXPECT_EQ(source.Seek(0, kSeekBegin), 0);
  EXPECT_EQ(Bytes(source, 10), "xy");
  EXPECT_EQ(source.Seek(0, kSeekBegin), 0);
  EXPECT_EQ(source.Write("z", 1), 1);
  source.Close();
  EXPECT_EQ(ReadFile(m_strPath), "zy");
}

TEST_F(FileDataSource, KeepsWhatIsThereWhenAppending) {
  CUT_FileDataSource source(Make("abc").c_str(), kLineBufferSize);
  EXPECT_EQ(source.Open(kSourceAppend), 0);
  EXPECT_EQ(source.Write("d", 1), 1);
  EXPECT_EQ(source.Seek(0, kSeekBegin), 0);
  EXPECT_EQ(source.Write("e", 1), 1);
  EXPECT_EQ(source.Seek(1, kSeekBegin), 1);
  EXPECT_EQ(source.WriteLine("f"), 1);
  source.Close();
  EXPECT_EQ(ReadFile(m_strPath), "abcdef\r\n");
}

TEST_F(FileDataSource, CreatesTheFileToAppendTo) {
  CUT_FileDataSource source(m_strPath.c_str(), kLineBufferSize);
  EXPECT_EQ(source.Open(kSourceAppend), 0);
  EXPECT_EQ(source.Write("abc", 3), 3);
  source.Close();
  EXPECT_EQ(ReadFile(m_strPath), "abc");
}

TEST_F(FileDataSource, RefusesUnknownModesAndEmptyNames) {
  CUT_FileDataSource source(Make("abc").c_str(), kLineBufferSize);
  EXPECT_EQ(source.Open(3), -1);
  EXPECT_EQ(source.Open(-1), -1);
  for (const char* name : {"", static_cast<const char*>(nullptr)}) {
    CUT_FileDataSource nameless(name, kLineBufferSize);
    for (const int mode : {0, 1, 2}) EXPECT_EQ(nameless.Open(mode), -1);
  }
}

TEST_F(FileDataSource, OpensANameOfOneLetter) {
  const auto before = std::filesystem::current_path();
  Make("abc");
  std::filesystem::current_path(m_folder.Path());
  CUT_FileDataSource source("a", kLineBufferSize);
  EXPECT_EQ(source.Open(kSourceRead), 0);
  std::filesystem::current_path(before);
  EXPECT_EQ(Bytes(source, 10), "abc");
}

TEST_F(FileDataSource, OpensTheNameWithoutTheBlanksAround) {
  Make("abc");
  CUT_FileDataSource source(("  " + m_strPath + " ").c_str(), kLineBufferSize);
  EXPECT_EQ(source.Open(kSourceRead), 0);
  EXPECT_EQ(Bytes(source, 10), "abc");
}

TEST_F(FileDataSource, TakesAtMost260BytesOfTheName) {
  const std::string name = "./" + std::string(100000, 'n');
  CUT_FileDataSource source(name.c_str(), kLineBufferSize);
  EXPECT_EQ(source.Open(kSourceRead), -1);
  // Nothing but blanks survives the cut.
  CUT_FileDataSource blanks((std::string(260, ' ') + m_strPath).c_str(), kLineBufferSize);
  EXPECT_EQ(blanks.Open(kSourceWrite), -1);
  const std::string path = Make("abc");
  CUT_FileDataSource padded((std::string(260 - path.size(), ' ') + path + "tail").c_str(), kLineBufferSize);
  EXPECT_EQ(padded.Open(kSourceRead), 0);
  EXPECT_EQ(Bytes(padded, 10), "abc");
}

TEST_F(FileDataSource, RefusesEverythingWhileClosed) {
  CUT_FileDataSource source(Make("abc").c_str(), kLineBufferSize);
  char buffer[10] = "x";
  EXPECT_EQ(source.Read(buffer, 10), -1);
  EXPECT_EQ(source.Write("x", 1), -1);
  EXPECT_EQ(source.WriteLine("x"), -1);
  EXPECT_EQ(source.WriteLine(""), -1);
  EXPECT_EQ(source.Seek(0, kSeekBegin), -1);
  EXPECT_EQ(source.ReadLine(buffer, 10), -1);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(source.Find("a", 0, 1, 0), -1);
  EXPECT_EQ(source.Close(), 0);
}

TEST_F(FileDataSource, RefusesNullBuffers) {
  CUT_FileDataSource source(m_strPath.c_str(), kLineBufferSize);
  ASSERT_EQ(source.Open(kSourceWrite), 0);
  EXPECT_EQ(source.Read(nullptr, 1), -1);
  EXPECT_EQ(source.Write(nullptr, 1), -1);
  EXPECT_EQ(source.WriteLine(nullptr), -1);
  EXPECT_EQ(source.ReadLine(nullptr, 10), -1);
  char untouched[] = "x";
  EXPECT_EQ(source.ReadLine(untouched, 0), -1);
  EXPECT_STREQ(untouched, "x");
}

TEST_F(FileDataSource, WritesALineEndUnlessThereIsOne) {
  CUT_FileDataSource source(m_strPath.c_str(), kLineBufferSize);
  ASSERT_EQ(source.Open(kSourceWrite), 0);
  EXPECT_EQ(source.WriteLine("abc"), 3);
  EXPECT_EQ(source.WriteLine("abc\n"), 4);
  EXPECT_EQ(source.WriteLine("abc\r"), 4);
  EXPECT_EQ(source.WriteLine("abc\r\n"), 5);
  EXPECT_EQ(source.WriteLine(""), 0);
  EXPECT_EQ(source.WriteLine("a\nb"), 3);
  EXPECT_EQ(source.WriteLine("\n"), 1);
  const char* const justAfterALineEnd = &"\n"[1];
  EXPECT_EQ(source.WriteLine(justAfterALineEnd), 0);
  source.Close();
  EXPECT_EQ(ReadFile(m_strPath), "abc\r\nabc\nabc\rabc\r\n\r\na\nb\r\n\n\r\n");
}

#ifndef _WIN32
TEST_F(FileDataSource, TellsHowMuchOfALineAFullDiskHeld) {
  CUT_FileDataSource source(m_strPath.c_str(), kLineBufferSize);
  ASSERT_EQ(source.Open(kSourceWrite), 0);
  const FileSizeLimit limit(3);
  EXPECT_EQ(source.WriteLine("abcde"), 3);
  EXPECT_EQ(ReadFile(m_strPath), "abc");
}
#endif

TEST_F(FileDataSource, SeeksFromWhatWasConsumed) {
  CUT_FileDataSource& source = Holding("first\r\nsecond\r\nthird\r\n");
  EXPECT_EQ(Line(source), "first\r\n");
  EXPECT_EQ(source.Seek(0, kSeekCurrent), 7);
  EXPECT_EQ(Line(source), "second\r\n");
  EXPECT_EQ(source.Seek(2, kSeekCurrent), 17);
  EXPECT_EQ(Line(source), "ird\r\n");
  EXPECT_EQ(source.Seek(-5, kSeekCurrent), 17);
  EXPECT_EQ(Line(source), "ird\r\n");
}

TEST_F(FileDataSource, SeeksFromASingleByteThatWasConsumedOrLeft) {
  CUT_FileDataSource& oneLeft = Holding("ab\r\nc");
  EXPECT_EQ(Line(oneLeft), "ab\r\n");
  EXPECT_EQ(oneLeft.Seek(0, 1), 4);
  CUT_FileDataSource& oneConsumed = Holding("abc");
  EXPECT_EQ(Line(oneConsumed, 2), "a");
  EXPECT_EQ(oneConsumed.Seek(0, 1), 1);
}

TEST_F(FileDataSource, SeeksFromBeginningAndEndWhateverWasConsumed) {
  CUT_FileDataSource& source = Holding("first\r\nsecond\r\nthird\r\n");
  EXPECT_EQ(Line(source), "first\r\n");
  EXPECT_EQ(source.Seek(2, kSeekBegin), 2);
  EXPECT_EQ(Line(source), "rst\r\n");
  EXPECT_EQ(source.Seek(-7, kSeekEnd), 15);
  EXPECT_EQ(Line(source), "third\r\n");
  EXPECT_EQ(source.Seek(0, kSeekEnd), 22);
  EXPECT_EQ(Line(source), "");
}

// Only a position behind the first byte is moved back.
TEST_F(FileDataSource, SeeksFromTheBufferedBytesWhenNoneWasConsumed) {
  CUT_FileDataSource& source = Holding("first\r\n");
  EXPECT_EQ(Line(source, 1), "");
  EXPECT_EQ(source.Seek(0, kSeekCurrent), 7);
}

TEST_F(FileDataSource, RefusesToSeekWhereThereIsNothing) {
  CUT_FileDataSource& source = Holding("abc");
  EXPECT_EQ(source.Seek(-1, kSeekBegin), -1);
  EXPECT_EQ(source.Seek(-4, kSeekEnd), -1);
  EXPECT_EQ(source.Seek(0, 3), -1);
  EXPECT_EQ(source.Seek(0, -1), -1);
  if (sizeof(long) > sizeof(std::int32_t)) {
    EXPECT_EQ(source.Seek(LONG_MAX, 0), -1);
  }
}

// It stays behind what was buffered.
TEST_F(FileDataSource, LosesWhatWasBufferedWhenASeekIsRefused) {
  for (const auto& [offset, origin] : {std::pair{0L, 3}, {-1L, kSeekBegin}}) {
    CUT_FileDataSource& source = Holding("first\r\nsecond\r\n");
    EXPECT_EQ(Line(source), "first\r\n");
    EXPECT_EQ(source.Seek(offset, origin), -1);
    EXPECT_EQ(Line(source), "");
  }
}

TEST_F(FileDataSource, HasNoNumberForPositionsBeyondTwoGiB) {
  constexpr std::uintmax_t kTwoGiB = std::uintmax_t{1} << 31;
  Make("");
  for (const std::uintmax_t size : {kTwoGiB - 1, kTwoGiB, 2 * kTwoGiB - 1, 2 * kTwoGiB + 7}) {
    std::filesystem::resize_file(m_strPath, size);
    CUT_FileDataSource source(m_strPath.c_str(), kLineBufferSize);
    ASSERT_EQ(source.Open(kSourceRead), 0);
    EXPECT_EQ(source.Seek(0, kSeekEnd), size < kTwoGiB ? 2147483647 : -1) << size;
    EXPECT_EQ(source.Seek(2147483647, kSeekBegin), 2147483647);
    EXPECT_EQ(Bytes(source, 100).size(), std::min<std::uintmax_t>(size - kTwoGiB + 1, 100));
  }
}

TEST_F(FileDataSource, GoesOnReadingLinesBeyondFourGiB) {
  constexpr std::uintmax_t kFourGiB = std::uintmax_t{1} << 32;
  Make("");
  std::filesystem::resize_file(m_strPath, kFourGiB - 10);
  CUT_FileDataSource writer(m_strPath.c_str(), kLineBufferSize);
  ASSERT_EQ(writer.Open(kSourceAppend), 0);
  EXPECT_EQ(writer.Write("\r\nabc\r\ndefghijk\r\nlast\r\n", 23), 23);
  EXPECT_EQ(writer.Write("lost", 4), -1);
  writer.Close();

  CUT_FileDataSource source(m_strPath.c_str(), kLineBufferSize);
  ASSERT_EQ(source.Open(kSourceRead), 0);
  EXPECT_EQ(source.Seek(2147483647, kSeekBegin), 2147483647);
  EXPECT_EQ(source.Seek(2147483639, kSeekCurrent), -1);  // it stands there, but cannot tell
  EXPECT_EQ(Line(source), "\r\n");
  EXPECT_EQ(Line(source), "abc\r\n");
  EXPECT_EQ(Line(source), "defghijk\r\n");
  EXPECT_EQ(Line(source), "last\r\n");
  EXPECT_EQ(Line(source), "");
}

TEST_F(FileDataSource, ClonesNameAndBufferSizeButNotTheOpenFile) {
  CUT_FileDataSource& source = Holding("abcdef\r\nnext\r\n", 5);
  EXPECT_EQ(Line(source), "abcd");
  const std::unique_ptr<CUT_DataSource> clone(source.Clone());
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(Line(*clone), "failed");
  EXPECT_EQ(clone->Open(0), 0);
  EXPECT_EQ(Line(*clone), "abcd");
  EXPECT_EQ(Line(source), "ef\r\n");
}

TEST_F(FileDataSource, ClosesTheFileAtItsEnd) {
  Holding("abc");
  m_pSource.reset();
  EXPECT_TRUE(std::filesystem::remove(m_strPath));
}

}  // namespace
