#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "files/write_file.h"
#include "handles/unique_handle.h"
#include "support/temporary_folder.h"
#include "tiler/output_folder.h"
#include "tiler/tiler_error.h"

namespace tiler {
namespace {

namespace fs = std::filesystem;

std::error_code SystemError(DWORD number) {
  return {static_cast<int>(number), std::system_category()};
}

class OutputOnWindows : public testing::Test {
 protected:
  OutputOnWindows() { m_output.CreateColumn(7, 3); }

  fs::path Tile() const { return m_path / "7" / "3" / "12.png"; }
  std::string Content() const { return m_output.ReadTile({7, 3, 12}, "png").value_or("nothing"); }
  UniqueHandle HoldOpen() const {
    return UniqueHandle(
        CreateFileW(Tile().c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  }
  void Write(const std::string& content) { m_output.WriteTile({7, 3, 12}, "png", content); }

  TemporaryFolder m_folder;
  // Letters that no code page has together.
  fs::path m_path = fs::path(m_folder.Path("maps")) / u8"wiesen é 草地 луга";
  OutputFolder m_output{[this] {
    const std::u8string name = m_path.u8string();
    return std::string(name.begin(), name.end());
  }()};
};

TEST_F(OutputOnWindows, TakesNamesOfAllLetters) {
  Write("old");
  Write("new");
  EXPECT_EQ(Content(), "new");
  EXPECT_TRUE(fs::exists(Tile()));
  EXPECT_EQ(m_output.Name(), "wiesen é 草地 луга");
}

TEST_F(OutputOnWindows, WaitsForWhoHoldsTheOldFile) {
  Write("old");
  UniqueHandle other = HoldOpen();
  std::jthread release([&other] {
    Sleep(300);
    other.reset();
  });
  Write("new");
  release.join();
  EXPECT_EQ(Content(), "new");
}

TEST_F(OutputOnWindows, KeepsTheOldFileThatIsHeldForGood) {
  Write("old");
  const UniqueHandle other = HoldOpen();
  try {
    Write("new");
    ADD_FAILURE() << "nothing was thrown";
  } catch (const TilerError& error) {
    const std::string reason = error.what();
    EXPECT_EQ(reason.find("could not write "), 0U) << reason;
    EXPECT_NE(reason.find("草地 луга\\7\\3\\12.png: "), std::string::npos) << reason;
  }
  EXPECT_EQ(Content(), "old");
  EXPECT_FALSE(fs::exists(Tile().concat(".~mos")));
}

TEST(WindowsErrors, AreToldInWords) {
  EXPECT_EQ(files::WordsFor(SystemError(ERROR_DISK_FULL)), "the disk is full");
  EXPECT_EQ(files::WordsFor(SystemError(ERROR_HANDLE_DISK_FULL)), "the disk is full");
  const std::string words = files::WordsFor(SystemError(ERROR_ACCESS_DENIED));
  EXPECT_GT(words.size(), 5U);
  EXPECT_EQ(words.find_first_of("\r\n"), std::string::npos) << words;
  EXPECT_NE(words.back(), '.') << words;
  EXPECT_EQ(files::WordsFor(SystemError(0x1FFFFFFF)), "error 536870911");
}

TEST(WindowsErrors, MayPassWhenTheFileIsHeldOpen) {
  for (const DWORD number : {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION}) {
    EXPECT_TRUE(files::IsHeldOpen(SystemError(number)));
  }
  EXPECT_FALSE(files::IsHeldOpen(SystemError(ERROR_DISK_FULL)));
  EXPECT_FALSE(files::IsHeldOpen(std::make_error_code(std::errc::permission_denied)));
}

}  // namespace
}  // namespace tiler
