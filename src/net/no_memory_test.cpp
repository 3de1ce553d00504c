// What becomes of a line when there is no memory for it. A program of its own: it replaces operator new.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <new>

#include "net/file_data_source.h"
#include "net/line_reader.h"
#include "support/temporary_folder.h"

namespace {

bool g_isFull = false;

// As long as it lives, whoever asks for memory without wanting an exception gets none.
class FullMemory {
 public:
  FullMemory() { g_isFull = true; }
  ~FullMemory() { g_isFull = false; }
  FullMemory(const FullMemory&) = delete;
  FullMemory& operator=(const FullMemory&) = delete;
};

}  // namespace

void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return g_isFull ? nullptr : ::operator new(size);
}

void* operator new[](size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return g_isFull ? nullptr : ::operator new[](size);
}

namespace {

class UnreadSocket : public LineSocket {
 public:
  bool IsAborted() override { return Touch() != 0; }
  bool WaitForData(long /*seconds*/) override { return Touch() != 0; }
  int Peek(char* /*buffer*/, int /*count*/) override { return Touch(); }
  int Take(char* /*buffer*/, int /*count*/) override { return Touch(); }

 private:
  static int Touch() {
    ADD_FAILURE() << "nothing is read that could not be kept";
    return 0;
  }
};

TEST(NoMemory, LeavesALineInTheSocket) {
  UnreadSocket socket;
  std::array<char, 10> buffer{'x', 'y'};
  const FullMemory full;
  EXPECT_EQ(ReadLineFrom(socket, buffer.data(), buffer.size(), 5), 0);
  EXPECT_STREQ(buffer.data(), "");
}

TEST(NoMemory, LeavesASourceWithoutLines) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("a");
  WriteFile(path, "abc\r\nde");
  std::unique_ptr<CUT_FileDataSource> source;
  {
    const FullMemory full;
    source = std::make_unique<CUT_FileDataSource>(path.c_str(), kLineBufferSize);
    EXPECT_EQ(source->Clone(), nullptr);
  }
  ASSERT_EQ(source->Open(kSourceRead), 0);
  char buffer[10] = "x";
  EXPECT_EQ(source->ReadLine(buffer, sizeof buffer), -1);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(source->Read(buffer, 3), 3) << "which needs no line buffer";
  EXPECT_EQ(std::memcmp(buffer, "abc", 3), 0);
}

}  // namespace
