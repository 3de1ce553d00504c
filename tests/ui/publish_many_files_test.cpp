// The upload of many small files, as a pyramid has them: that all arrive, and how long the dialog keeps its
// user waiting meanwhile. Against a real server, see ServerLogin.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <numeric>

#include "ui/publish_fixture.h"
#include "ui/slowness.h"

namespace {

using Strings = std::vector<std::string>;

constexpr int kFiles = 2000;
constexpr int kInOneFolder = 1800;  // the rest is spread
constexpr int kInEachFolder = 20;
constexpr size_t kLargest = 4096;          // bytes
constexpr DWORD kUploadPatience = 240000;  // ms
constexpr DWORD kInterval = 50;            // ms
constexpr DWORD kLimit = 10000;            // ms
constexpr double kPromptly = 100;          // ms, where nothing else runs
// The server and other programs share the processors: a turn of the window may come late by the
// scheduler's doing. What the window itself did for too long would come again and again.
constexpr double kLateShare = 0.01;

class ManyFiles : public PublishTest {
 protected:
  // As tiles are named: zoom level, column, row. Returns what it has made, which is faster than to read it.
  Tree MakeTiles() const {
    Tree tiles = {{"17\\", ""}};
    for (int i = 0; i < kFiles; ++i) {
      const int column = i < kInOneFolder ? 0 : (i - kInOneFolder) / kInEachFolder + 1;
      const std::string folder = "17\\" + std::to_string(column) + "\\";
      const std::string name = folder + std::to_string(i) + ".png";
      if (tiles.emplace(folder, "").second) std::filesystem::create_directories(Path("tiles\\" + folder));
      tiles[name] = std::string(static_cast<size_t>(i) * 37 % kLargest, 'x') + name;
      WriteFile(Path("tiles\\" + name), tiles[name]);
    }
    return tiles;
  }

  // Asks the dialog again and again until it has something to say.
  std::vector<double> AskUntilMessage() {
    std::vector<double> times;
    const Window dialog = Ftp();
    const bool hasCome = WaitUntil(
        [&] {
          const auto time = dialog.AnswerTime(kLimit);
          times.push_back(time.value_or(kLimit));
          // A message box takes the dialog its input.
          if (!dialog.IsEnabled()) return true;
          Sleep(kInterval);
          return false;
        },
        kUploadPatience);
    EXPECT_TRUE(hasCome);
    return times;
  }
};

TEST_F(ManyFiles, ArriveWhileTheWindowAnswers) {
  const Tree tiles = MakeTiles();
  ASSERT_TRUE(OpenUpload(Path("tiles")));
  ASSERT_TRUE(Connect(ServerLogin()));
  const ULONGLONG start = GetTickCount64();
  FtpItem(IDC_FTP_UPLOAD).Click();
  const std::vector<double> times = AskUntilMessage();
  const double seconds = static_cast<double>(GetTickCount64() - start) / 1000;
  EXPECT_EQ(NextMessage(), (Told{std::to_string(kFiles) + " file uploaded", BoxIcon::kInformation}));
  EXPECT_EQ(Differences(ReadTree(Remote("tiles")), tiles), Strings());

  const auto count = static_cast<double>(times.size());
  const double promptly = kPromptly * Slowness();
  const auto late = std::count_if(times.begin(), times.end(), [&](double time) { return time > promptly; });
  std::printf("%d files in %.1f s; answers: %.1f ms on average, %.1f ms at most, %d of %d above %.0f\n",
              kFiles, seconds, std::accumulate(times.begin(), times.end(), 0.0) / count,
              *std::max_element(times.begin(), times.end()), static_cast<int>(late),
              static_cast<int>(times.size()), promptly);
  EXPECT_GE(count, 100) << "too few to tell";
  EXPECT_LE(static_cast<double>(late), kLateShare * count);
}

}  // namespace
