// How long the window keeps its user waiting while tiles are cut.
#include <algorithm>
#include <cstdio>
#include <numeric>

#include "ui/mosaicon_fixture.h"
#include "ui/slowness.h"

namespace {

constexpr DWORD kInterval = 50;    // ms
constexpr DWORD kLimit = 10000;    // ms
constexpr int kQuestions = 60;     // per situation
constexpr double kPromptly = 100;  // ms, where nothing else runs
// The tiling script keeps every processor busy, and so may other programs: a turn of the window may come
// late by the scheduler's doing. What the window itself did for too long would come again and again.
constexpr int kLateOnes = 2;

class Responsiveness : public MosaiconTest {
 protected:
  static void SetUpTestSuite() { MosaiconTest::SetUpTestSuite(); }

  void SetUp() override {
    MosaiconTest::SetUp();
    FillIn({.orthophoto = MakeLargeOrthophoto(), .target = Path("out")});
    PressStart();
    ASSERT_TRUE(WaitUntilTiling());
  }
  void TearDown() override {
    Item(IDC_CANCEL_JOB).Click();
    NextMessage(IDYES);
    EXPECT_TRUE(TakeReport());
    MosaiconTest::TearDown();
  }

  // Asks again and again; between the questions something may be done to the window.
  void ExpectPromptAnswers(
      const char* situation, const std::function<void(int)>& disturb = [](int) {}) {
    std::vector<double> times;
    for (int i = 0; i < kQuestions; ++i) {
      disturb(i);
      const auto time = Main().AnswerTime(kLimit);
      ASSERT_TRUE(time) << "no answer at all";
      times.push_back(*time);
      Sleep(kInterval);
    }
    EXPECT_TRUE(IsWorking()) << "the job was over too soon";
    const double promptly = kPromptly * Slowness();
    const auto late = std::count_if(times.begin(), times.end(), [&](double time) { return time > promptly; });
    EXPECT_LE(late, kLateOnes);
    std::printf("%s: %.1f ms on average, %.1f ms at most, %d of %d above %.0f\n", situation,
                std::accumulate(times.begin(), times.end(), 0.0) / kQuestions,
                *std::max_element(times.begin(), times.end()), static_cast<int>(late), kQuestions, promptly);
  }
};

TEST_F(Responsiveness, IsKeptWhileTilesAreCut) {
  ExpectPromptAnswers("tiles are cut");
}

TEST_F(Responsiveness, IsKeptUnderTheAboutBox) {
  Item(IDC_ABOUT).Click();
  const Window about = Running().WaitFor("About Mosaicon");
  ASSERT_TRUE(about);
  ExpectPromptAnswers("About is open");
  about.Item(IDOK).Click();
  EXPECT_TRUE(about.WaitUntilGone());
}

// By the keyboard, in the system's own loop for it.
TEST_F(Responsiveness, IsKeptWhileTheWindowIsMoved) {
  const RECT before = Main().Place();
  // The keys go to the window itself: no control has the focus when the screen gave it to nobody.
  Main().Post(WM_SYSCOMMAND, SC_MOVE);
  ExpectPromptAnswers("the window is moved",
                      [&](int i) { Main().PressKey(i % 2 == 0 ? VK_RIGHT : VK_DOWN); });
  Main().PressKey(VK_RETURN);
  EXPECT_TRUE(
      WaitUntil([&] { return Main().Place().left > before.left && Main().Place().top > before.top; }));
}

}  // namespace
