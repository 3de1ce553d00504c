// A job that does not come to its end: aborted, or its window closed.
#include <filesystem>

#include "ui/mosaicon_fixture.h"

namespace {

constexpr DWORD kClosePatience = 10000;  // ms
const Told kAbortQuestion = {
    "Do you really want to abort current process?", BoxIcon::kQuestion, {IDYES, IDNO}};

// The files of a process that has just ended are still found, and then they cannot be read.
TEST(RunningToolsTest, AreLookedForAmongProcessesThatEnd) {
  // On a Linux host there is a file like that.
  EXPECT_EQ(ReadWhileThere("Z:\\proc\\self\\mem"), "");
  EXPECT_EQ(ReadWhileThere("Z:\\proc\\0\\cmdline"), "");
  EXPECT_NE(ReadWhileThere(StageProgram()), "");
}

class Abort : public MosaiconTest {
 protected:
  void StartLargeJob() {
    FillIn({.orthophoto = MakeLargeOrthophoto(), .target = Path("out")});
    PressStart();
    ASSERT_TRUE(WaitUntilTiling());
  }

  static void ExpectNoTools() {
    std::vector<std::string> left;
    WaitUntil([&] {
      left = RunningTools();
      return left.empty();
    });
    EXPECT_EQ(left, std::vector<std::string>());
  }
};

TEST_F(Abort, IsAskedByButtonAndEscapeAndCanBeDeclined) {
  StartLargeJob();
  Item(IDC_CANCEL_JOB).Click();
  EXPECT_EQ(NextMessage(IDNO), kAbortQuestion);
  EXPECT_TRUE(IsWorking());
  EXPECT_FALSE(RunningTools().empty());

  // To whatever has the focus.
  Main().Focus().PressKey(VK_ESCAPE);
  EXPECT_EQ(NextMessage(IDNO), kAbortQuestion);
  EXPECT_TRUE(IsWorking());

  Main().Focus().PressKey(VK_ESCAPE);
  EXPECT_EQ(NextMessage(IDYES), kAbortQuestion);
  const auto report = TakeReport();
  ASSERT_TRUE(report);
  EXPECT_EQ(report->log, "Aborted by user");
  ExpectNoTools();

  const std::string next = MakeOrthophoto("next.tif");
  const auto second = RunJob({.orthophoto = next, .target = Path("next")});
  ASSERT_TRUE(second);
  EXPECT_EQ(second->log, "- " + next + ": OK\r\n");
  EXPECT_TRUE(FileExists(Path("next") + "\\googleearth_loc.kml"));
}

TEST_F(Abort, EndsTheWholeFolder) {
  std::filesystem::create_directory(Path("in"));
  for (const char* name : {"in\\a.tif", "in\\b.tif"}) MakeOrthophoto(name, 4000, 4000);
  FillIn({.orthophoto = Path("in"), .target = Path("out"), .folderMode = true});
  PressStart();
  ASSERT_TRUE(WaitUntilTiling());
  Item(IDC_CANCEL_JOB).Click();
  NextMessage(IDYES);
  const auto report = TakeReport();
  ASSERT_TRUE(report);
  EXPECT_EQ(report->log, "Aborted by user");
  EXPECT_FALSE(FileExists(Path("out") + "\\tile_1"));
  ExpectNoTools();
}

TEST_F(Abort, IsNotAskedWhileNothingRuns) {
  FillIn({});
  // As if it were not disabled.
  Main().Post(WM_COMMAND, MAKEWPARAM(IDC_CANCEL_JOB, BN_CLICKED),
              reinterpret_cast<LPARAM>(Item(IDC_CANCEL_JOB).Handle()));
  Item(IDC_CANCEL_JOB).Click();
  EXPECT_TRUE(IsSilent());
}

class Closing : public Abort {
 protected:
  void ExpectEnd() {
    const Program& program = Running();
    EXPECT_TRUE(program.WaitForEnd(kClosePatience)) << "the process still runs";
    EXPECT_EQ(program.ExitCode(), 0U);
    ExpectNoTools();
    EXPECT_EQ(CrashReports(), 0);
    StopProgram();
  }

  static int CrashReports() {
    char local[MAX_PATH] = "";
    GetEnvironmentVariableA("LOCALAPPDATA", local, sizeof local);
    int count = 0;
    std::error_code none;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::string(local) + "\\Mosaicon\\CrashReports", none)) {
      count += entry.is_directory() ? 1 : 0;
    }
    return count;
  }
};

TEST_F(Closing, EndsAJobWithItsTools) {
  StartLargeJob();
  Main().Post(WM_CLOSE);
  ExpectEnd();
}

TEST_F(Closing, ByTheFrameIsTheSame) {
  StartLargeJob();
  Main().Post(WM_SYSCOMMAND, SC_CLOSE);
  ExpectEnd();
}

// It takes up to five seconds, in which nothing seems to happen.
TEST_F(Closing, AgainAndAgainIsTheSame) {
  StartLargeJob();
  const Window main = Main();
  const Window about = Item(IDC_ABOUT);
  main.Post(WM_CLOSE);
  main.Post(WM_CLOSE);
  about.Click();
  main.Post(WM_SYSCOMMAND, SC_CLOSE);
  ExpectEnd();
}

TEST_F(Closing, WaitsForTheAnswerToAQuestion) {
  StartLargeJob();
  Item(IDC_CANCEL_JOB).Click();
  ASSERT_TRUE(WaitForMessageBox(Running()));
  Main().Post(WM_CLOSE);
  EXPECT_EQ(NextMessage(IDNO), kAbortQuestion);
  EXPECT_TRUE(IsWorking());
  Main().Post(WM_CLOSE);
  ExpectEnd();
}

TEST_F(Closing, WithoutAJobEndsTheProgram) {
  FillIn({});
  Main().Post(WM_SYSCOMMAND, SC_CLOSE);
  ExpectEnd();
}

TEST_F(Closing, ByTheExitButtonEndsTheProgram) {
  FillIn({});
  Item(IDC_EXIT).Click();
  ExpectEnd();
}

}  // namespace
