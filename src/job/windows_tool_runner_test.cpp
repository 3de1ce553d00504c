#include "job/windows_tool_runner.h"

#include "job/testing/progress_window.h"
#include "job/testing/tool_fixture.h"
#include "job/tool_items.h"

namespace {

class Runner : public ToolFixture {
 protected:
  ProgressWindow m_window;
  WindowsToolRunner m_runner{&m_window};
};

TEST_F(Runner, ReturnsWhenTheToolHasEnded) {
  m_runner.RunTranslator(m_folder.Path("gdal_translate.exe"), " touch:" + m_folder.Path("1"));
  EXPECT_TRUE(FileExists(m_folder.Path("1")));
  m_runner.RunWarper(m_folder.Path("gdalwarp.exe"), " touch:" + m_folder.Path("2"));
  EXPECT_TRUE(FileExists(m_folder.Path("2")));
  m_runner.RunTiler(m_folder.Path("python.exe"), " touch:" + m_folder.Path("3") + " say:x_0.4_y");
  EXPECT_TRUE(FileExists(m_folder.Path("3")));
  EXPECT_EQ(m_window.positions, std::vector<int>{40});
  EXPECT_EQ(g_pWorkQueue, nullptr);
  EXPECT_EQ(g_pTilesJob, nullptr);
}

TEST_F(Runner, ReturnsWhenTheToolIsMissing) {
  m_runner.RunTranslator(m_folder.Path("none.exe"), " x");
  EXPECT_EQ(g_pTranslateJob, nullptr);
  EXPECT_EQ(g_pWorkQueue, nullptr);
}

VOID CALLBACK AbortAndDestroyQueue(HWND window, UINT, UINT_PTR timer, DWORD) {
  KillTimer(window, timer);
  AbortItem(g_pTilesJob);
  while (g_pTilesJob != nullptr) Sleep(10);
  DestroyWorkQueue();
}

TEST_F(Runner, BearsAHandlerThatAbortsAndDestroysTheQueueMeanwhile) {
  WindowsToolRunner runner(nullptr);
  ASSERT_NE(SetTimer(m_window.GetSafeHwnd(), 1, 300, AbortAndDestroyQueue), 0U);
  runner.RunTiler(m_folder.Path("python.exe"), " sleep:60000");
  EXPECT_EQ(g_pWorkQueue, nullptr);
  EXPECT_EQ(WaitForTools(0), 0);
}

TEST_F(Runner, UsesLittleOfTheProcessorWhileItWaits) {
  FILETIME unused, kernelBefore, userBefore, kernelAfter, userAfter;
  GetThreadTimes(GetCurrentThread(), &unused, &unused, &kernelBefore, &userBefore);
  m_runner.RunTiler(m_folder.Path("python.exe"), " sleep:3000 say:x_1.0_y");
  GetThreadTimes(GetCurrentThread(), &unused, &unused, &kernelAfter, &userAfter);
  const auto ticks = [](const FILETIME& time) {
    return (static_cast<ULONGLONG>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
  };
  const ULONGLONG used = ticks(kernelAfter) - ticks(kernelBefore) + ticks(userAfter) - ticks(userBefore);
  EXPECT_LT(used / 10000, 300U) << "milliseconds of processor in three seconds";
}

}  // namespace
