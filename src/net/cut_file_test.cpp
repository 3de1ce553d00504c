#include "net/cut_file.h"

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <string>

#include "net/data_source.h"
#include "support/temporary_folder.h"

namespace {

constexpr std::int64_t kGiB = std::int64_t{1} << 30;
constexpr std::uint32_t kReadWrite = kFileReadAccess | kFileWriteAccess;

class CutFile : public testing::Test {
 protected:
  std::string Make(const std::string& name, const std::string& bytes) {
    WriteFile(m_folder.Path(name), bytes);
    return m_folder.Path(name);
  }

  // Sparse where the file system can. Closes the file of the test.
  std::string MakeLarge(std::int64_t size) {
    m_file.Close();
    const std::string path = Make("large", "");
    std::filesystem::resize_file(path, static_cast<std::uintmax_t>(size));
    return path;
  }

  // Goes beyond what one step of 32 bits reaches.
  std::int64_t GoTo(std::int64_t position) {
    std::int64_t place = m_file.Seek(0, kSeekBegin);
    while (place != -1 && place < position) {
      place = m_file.Seek(static_cast<std::int32_t>(std::min<std::int64_t>(position - place, kGiB)), 1);
    }
    return place;
  }

  std::string ReadText(std::uint32_t count) {
    std::string text(count, '\0');
    const int read = m_file.Read(text.data(), count);
    return read < 0 ? "failed" : text.substr(0, static_cast<size_t>(read));
  }

  TemporaryFolder m_folder;
  CUT_File m_file;
};

TEST_F(CutFile, ReadsFromTheBeginningToTheEnd) {
  ASSERT_EQ(m_file.Open(Make("a", "abcdef").c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(m_file.GetSize(), 6);
  EXPECT_EQ(ReadText(4), "abcd");
  EXPECT_EQ(ReadText(4), "ef");
  EXPECT_EQ(ReadText(4), "");
  EXPECT_EQ(ReadText(0), "");
}

TEST_F(CutFile, RefusesEverythingWhileClosed) {
  char byte = 'x';
  EXPECT_EQ(m_file.Read(&byte, 1), -1);
  EXPECT_EQ(m_file.Write(&byte, 1), -1);
  EXPECT_EQ(m_file.Seek(0, kSeekBegin), -1);
  EXPECT_EQ(m_file.GetSize(), -1);
  EXPECT_EQ(m_file.Close(), 0);
  ASSERT_EQ(m_file.Open(Make("a", "abc").c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(m_file.Close(), 0);
  EXPECT_EQ(m_file.Close(), 0);
  EXPECT_EQ(m_file.Read(&byte, 1), -1);
}

TEST_F(CutFile, RefusesWhatItWasNotOpenedFor) {
  const std::string path = Make("a", "abc");
  ASSERT_EQ(m_file.Open(path.c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(m_file.Write("x", 1), -1);
  ASSERT_EQ(m_file.Open(path.c_str(), kFileWriteAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(ReadText(1), "failed");
  EXPECT_EQ(m_file.Write("x", 1), 1);
  m_file.Close();
  EXPECT_EQ(ReadFile(path), "xbc");
}

TEST_F(CutFile, RefusesNullBuffers) {
  ASSERT_EQ(m_file.Open(Make("a", "abc").c_str(), kReadWrite, kFileOpenExisting, 0), 0);
  for (const std::uint32_t count : {0U, 1U}) {
    EXPECT_EQ(m_file.Read(nullptr, count), -1);
    EXPECT_EQ(m_file.Write(nullptr, count), -1);
  }
}

TEST_F(CutFile, OpensTheNameWithoutTheBlanksAround) {
  const std::string path = Make("a b", "abc");
  for (const std::string& name : {" " + path, path + " ", "   " + path + "  "}) {
    EXPECT_EQ(m_file.Open(name.c_str(), kFileReadAccess, kFileOpenExisting, 0), 0) << name;
    EXPECT_EQ(ReadText(10), "abc");
  }
  const std::string made = m_folder.Path("made");
  ASSERT_EQ(m_file.Open(("  " + made + " ").c_str(), kReadWrite, kFileCreateAlways, 0), 0);
  m_file.Close();
  EXPECT_TRUE(FileExists(made));
}

TEST_F(CutFile, RefusesNamesOfNothing) {
  for (const std::string& name : {std::string(), std::string("   "), m_folder.Path("missing"),
                                  m_folder.Path(), std::string(5000, 'n')}) {
    EXPECT_EQ(m_file.Open(name.c_str(), kFileReadAccess, kFileOpenExisting, 0), -1) << name;
  }
  EXPECT_EQ(m_file.Open(nullptr, kFileReadAccess, kFileOpenExisting, 0), -1);
  EXPECT_EQ(m_file.Open(m_folder.Path("missing/a").c_str(), kReadWrite, kFileCreateAlways, 0), -1);
  EXPECT_EQ(m_file.Open(Make("a", "").c_str(), kReadWrite, 99, 0), -1);
}

TEST_F(CutFile, ClosesTheOpenFileBeforeAnother) {
  const std::string first = Make("a", "abc");
  ASSERT_EQ(m_file.Open(first.c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(m_file.Open(m_folder.Path("missing").c_str(), kFileReadAccess, kFileOpenExisting, 0), -1);
  EXPECT_EQ(ReadText(1), "failed");
  ASSERT_EQ(m_file.Open(first.c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  ASSERT_EQ(m_file.Open(Make("b", "xyz").c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(ReadText(3), "xyz");
  // Nobody holds it open.
  EXPECT_TRUE(std::filesystem::remove(first));
}

TEST_F(CutFile, ClosesNoOthersFile) {
  const std::string path = Make("a", "abc");
  ASSERT_EQ(m_file.Open(path.c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  m_file.Close();
  // It may have the handle that has just become free.
  CUT_File other;
  ASSERT_EQ(other.Open(path.c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  m_file.Close();
  EXPECT_EQ(other.GetSize(), 3);
}

TEST_F(CutFile, CreatesTruncatesOrKeepsAsToldByTheDisposition) {
  const std::string path = m_folder.Path("a");
  ASSERT_EQ(m_file.Open(path.c_str(), kReadWrite, kFileOpenAlways, 0), 0);
  EXPECT_EQ(m_file.Write("abc", 3), 3);
  ASSERT_EQ(m_file.Open(path.c_str(), kReadWrite, kFileOpenAlways, 0), 0);
  EXPECT_EQ(m_file.GetSize(), 3);
  ASSERT_EQ(m_file.Open(path.c_str(), kReadWrite, kFileCreateAlways, 0), 0);
  EXPECT_EQ(m_file.GetSize(), 0);
}

TEST_F(CutFile, SeeksFromBeginningPositionAndEnd) {
  ASSERT_EQ(m_file.Open(Make("a", "abcdef").c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(m_file.Seek(2, kSeekBegin), 2);
  EXPECT_EQ(ReadText(1), "c");
  EXPECT_EQ(m_file.Seek(1, kSeekCurrent), 4);
  EXPECT_EQ(ReadText(1), "e");
  EXPECT_EQ(m_file.Seek(-2, kSeekCurrent), 3);
  EXPECT_EQ(m_file.Seek(-6, kSeekEnd), 0);
  EXPECT_EQ(m_file.Seek(10, kSeekEnd), 16);
  EXPECT_EQ(ReadText(1), "");
}

TEST_F(CutFile, StaysWhereItIsWhenItCannotSeek) {
  ASSERT_EQ(m_file.Open(Make("a", "abcdef").c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(m_file.Seek(2, kSeekBegin), 2);
  EXPECT_EQ(m_file.Seek(-1, kSeekBegin), -1);
  EXPECT_EQ(m_file.Seek(-3, kSeekCurrent), -1);
  EXPECT_EQ(m_file.Seek(-7, kSeekEnd), -1);
  EXPECT_EQ(m_file.Seek(INT32_MIN, kSeekEnd), -1);
  EXPECT_EQ(m_file.Seek(0, 3), -1);
  EXPECT_EQ(m_file.Seek(5, 3), -1);
  EXPECT_EQ(m_file.Seek(0, 0xFFFFFFFF), -1);
  EXPECT_EQ(ReadText(1), "c");
}

TEST_F(CutFile, AppendsWhereverItStands) {
  const std::string path = Make("a", "abc");
  ASSERT_EQ(m_file.Open(path.c_str(), kReadWrite, kFileOpenAlways, 1), 0);
  EXPECT_EQ(m_file.Write("de", 2), 2);
  EXPECT_EQ(m_file.Seek(0, kSeekBegin), 0);
  EXPECT_EQ(m_file.Write("f", 1), 1);
  EXPECT_EQ(m_file.Seek(1, kSeekBegin), 1);
  EXPECT_EQ(ReadText(1), "b");
  EXPECT_EQ(m_file.Write("g", 1), 1);
  m_file.Close();
  EXPECT_EQ(ReadFile(path), "abcdefg");
  // The next opening has its own way.
  ASSERT_EQ(m_file.Open(path.c_str(), kReadWrite, kFileOpenExisting, 0), 0);
  EXPECT_EQ(m_file.Write("X", 1), 1);
  m_file.Close();
  EXPECT_EQ(ReadFile(path), "Xbcdefg");
}

TEST_F(CutFile, TellsPositionsUpToFourGiB) {
  ASSERT_EQ(m_file.Open(MakeLarge(3 * kGiB).c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(m_file.GetSize(), 3 * kGiB);
  EXPECT_EQ(m_file.Seek(0, kSeekEnd), 3 * kGiB);
  EXPECT_EQ(m_file.Seek(INT32_MAX, kSeekBegin), INT32_MAX);
  EXPECT_EQ(m_file.Seek(INT32_MAX, kSeekCurrent), 4 * kGiB - 2);
  EXPECT_EQ(m_file.Seek(1, kSeekCurrent), -1);
  EXPECT_EQ(m_file.Seek(0, kSeekCurrent), 4 * kGiB - 2);
}

TEST_F(CutFile, TellsTheLowHalfOfALargerSize) {
  ASSERT_EQ(m_file.Open(MakeLarge(4 * kGiB - 1).c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(m_file.GetSize(), 4 * kGiB - 1);
  EXPECT_EQ(m_file.Seek(0, kSeekEnd), -1);
  EXPECT_EQ(m_file.Seek(-1, kSeekEnd), 4 * kGiB - 2);
  ASSERT_EQ(m_file.Open(MakeLarge(4 * kGiB + 5).c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(m_file.GetSize(), 5);
}

TEST_F(CutFile, ReadsAndWritesAcrossFourGiB) {
  ASSERT_EQ(m_file.Open(MakeLarge(4 * kGiB).c_str(), kReadWrite, kFileOpenExisting, 0), 0);
  ASSERT_EQ(GoTo(4 * kGiB - 2), 4 * kGiB - 2);
  EXPECT_EQ(m_file.Write("abcdef", 6), 6);
  EXPECT_EQ(m_file.GetSize(), 4);
  ASSERT_EQ(GoTo(4 * kGiB - 4), 4 * kGiB - 4);
  EXPECT_EQ(ReadText(100), std::string("\0\0abcdef", 8));
  // There is no number for where it stands now.
  EXPECT_EQ(m_file.Seek(0, kSeekCurrent), -1);
  EXPECT_EQ(m_file.Seek(-2, kSeekCurrent), -1);
  EXPECT_EQ(m_file.Seek(0, kSeekBegin), 0);
}

TEST_F(CutFile, AppendsUpToFourGiBAndNotBeyond) {
  const std::string path = MakeLarge(4 * kGiB - 2);
  ASSERT_EQ(m_file.Open(path.c_str(), kReadWrite, kFileOpenAlways, 1), 0);
  EXPECT_EQ(m_file.Write("abcd", 4), 4);
  EXPECT_EQ(m_file.Write("lost", 4), -1);
  EXPECT_EQ(m_file.Seek(0, kSeekBegin), 0);
  EXPECT_EQ(m_file.Write("lost", 4), -1);
  EXPECT_EQ(ReadText(4), std::string(4, '\0'));
  m_file.Close();
  EXPECT_EQ(static_cast<std::int64_t>(std::filesystem::file_size(path)), 4 * kGiB + 2);
}

TEST_F(CutFile, ClosesItselfAtItsEnd) {
  const std::string path = Make("a", "abc");
  {
    CUT_File file;
    ASSERT_EQ(file.Open(path.c_str(), kReadWrite, kFileOpenExisting, 0), 0);
  }
  EXPECT_TRUE(std::filesystem::remove(path));
  EXPECT_FALSE(FileExists(path));
}

#ifndef _WIN32
// On Windows others can open, replace and remove the file only once it is closed.
auto CountOpenFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST_F(CutFile, LeavesNothingOpen) {
  const std::string path = Make("a", "abc");
  const auto before = CountOpenFiles();
  {
    CUT_File file;
    for (int i = 0; i < 2; ++i) {
      ASSERT_EQ(file.Open(path.c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
      EXPECT_EQ(CountOpenFiles(), before + 1);
    }
    EXPECT_EQ(file.Open(m_folder.Path("missing").c_str(), kFileReadAccess, kFileOpenExisting, 0), -1);
    EXPECT_EQ(CountOpenFiles(), before);
    ASSERT_EQ(file.Open(path.c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
    file.Close();
    EXPECT_EQ(CountOpenFiles(), before);
    ASSERT_EQ(file.Open(path.c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  }
  EXPECT_EQ(CountOpenFiles(), before);
}

TEST_F(CutFile, HasNeitherSizeNorPositionWhereTheSystemTellsNone) {
  const std::string pipe = m_folder.Path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  ASSERT_EQ(m_file.Open(pipe.c_str(), kReadWrite, kFileOpenExisting, 0), 0);
  EXPECT_EQ(m_file.GetSize(), -1);
  for (const std::uint32_t origin : {kSeekBegin, kSeekCurrent, kSeekEnd}) {
    EXPECT_EQ(m_file.Seek(0, origin), -1);
  }
}
#endif

}  // namespace
