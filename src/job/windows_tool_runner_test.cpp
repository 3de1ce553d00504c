#include "job/windows_tool_runner.h"

#include "job/testing/progress_window.h"
#include "job/testing/tool_fixture.h"
#include "job/tool_items.h"

namespace {

constexpr DWORD kTurn = 200;  // ms

class Runner : public ToolFixture {
 protected:
  ToolOutcome Run(Tool tool, const char* program, const std::string& arguments) {
    return m_runner.Run({tool, m_folder.Path(program), arguments, "", "", ""});
  }

  ProgressWindow m_window;
  WindowsToolRunner m_runner{&m_window, m_folder.Path("tiler.log"), kTurn};
};

TEST_F(Runner, ReturnsWhenTheToolHasEnded) {
  Run(Tool::kTranslator, "gdal_translate.exe", " touch:" + m_folder.Path("1"));
  EXPECT_TRUE(FileExists(m_folder.Path("1")));
  Run(Tool::kWarper, "gdalwarp.exe", " touch:" + m_folder.Path("2"));
  EXPECT_TRUE(FileExists(m_folder.Path("2")));
  Run(Tool::kTiler, "python.exe", " touch:" + m_folder.Path("3") + " say:x_0.4_y");
  EXPECT_TRUE(FileExists(m_folder.Path("3")));
  EXPECT_EQ(m_window.positions, std::vector<int>{40});
  EXPECT_EQ(g_pWorkQueue, nullptr);
  EXPECT_EQ(g_pTilesJob, nullptr);
}

TEST_F(Runner, ReturnsWhenTheToolIsMissing) {
  EXPECT_EQ(Run(Tool::kTranslator, "none.exe", " x").exitCode, std::nullopt);
  EXPECT_EQ(g_pTranslateJob, nullptr);
  EXPECT_EQ(g_pWorkQueue, nullptr);
}

TEST_F(Runner, TellsHowTheToolEnded) {
  EXPECT_EQ(Run(Tool::kTranslator, "gdal_translate.exe", "").exitCode, 0U);
  EXPECT_EQ(Run(Tool::kWarper, "gdalwarp.exe", " exit:3").exitCode, 3U);
  EXPECT_EQ(Run(Tool::kTiler, "python.exe", " exit:7").exitCode, 7U);
  const ToolOutcome outcome = Run(Tool::kTiler, "python.exe",
                                  " write:" + m_folder.Path("tiler.log") + ":RESULT_FAILED_no_memory exit:1");
  EXPECT_EQ(outcome.exitCode, 1U);
  EXPECT_EQ(outcome.lastWords, "RESULT FAILED no memory");
}

VOID CALLBACK AbortAndDestroyQueue(HWND window, UINT, UINT_PTR timer, DWORD) {
  KillTimer(window, timer);
  AbortItem(g_pTilesJob);
  while (g_pTilesJob != nullptr) Sleep(10);
  DestroyWorkQueue();
}

TEST_F(Runner, BearsAHandlerThatAbortsAndDestroysTheQueueMeanwhile) {
  WindowsToolRunner runner(nullptr, "", kTurn);
  ASSERT_NE(SetTimer(m_window.GetSafeHwnd(), 1, 300, AbortAndDestroyQueue), 0U);
  EXPECT_EQ(runner.Run({Tool::kTiler, m_folder.Path("python.exe"), " sleep:600000", "", "", ""}).exitCode,
            std::nullopt);
  EXPECT_EQ(g_pWorkQueue, nullptr);
  EXPECT_EQ(WaitForTools(0), 0);
}

TEST_F(Runner, UsesLittleOfTheProcessorWhileItWaits) {
  FILETIME unused, kernelBefore, userBefore, kernelAfter, userAfter;
  GetThreadTimes(GetCurrentThread(), &unused, &unused, &kernelBefore, &userBefore);
  Run(Tool::kTiler, "python.exe", " sleep:3000 say:x_1.0_y");
  GetThreadTimes(GetCurrentThread(), &unused, &unused, &kernelAfter, &userAfter);
  const auto ticks = [](const FILETIME& time) {
    return (static_cast<ULONGLONG>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
  };
  const ULONGLONG used = ticks(kernelAfter) - ticks(kernelBefore) + ticks(userAfter) - ticks(userBefore);
  EXPECT_LT(used / 10000, 300U) << "milliseconds of processor in three seconds";
}

}  // namespace
