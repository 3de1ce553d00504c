#include "job/tool_items.h"

#include "job/testing/progress_window.h"
#include "job/testing/tool_fixture.h"
#include "kvtools/kvtools.h"
#include "support/open_handles.h"

namespace {

// Milliseconds. Shorter turns than those of the program, and the time in which an item must have seen that it
// is aborted: a turn, and enough for a slow machine.
constexpr DWORD kTurn = 500;
constexpr ULONGLONG kOneTurn = 10000;

// Tells what became of an item after it has deleted itself.
struct Trace {
  std::atomic<int> destroyed{0};
  std::atomic<int32_t> status{-1};
};

class TracedTiles : public CGDAL2TilesThread {
 public:
  TracedTiles(Trace& trace, const std::string& tool, const std::string& commandLine, CWnd* progress,
              DWORD turn)
      : CGDAL2TilesThread(tool, commandLine, progress, {turn, nullptr}), m_trace(trace) {}
  ~TracedTiles() override {
    EXPECT_EQ(g_pTilesJob, nullptr) << "the global is cleared first";
    m_trace.status = m_nStatus.load();
    ++m_trace.destroyed;
  }

 private:
  Trace& m_trace;
};

class ToolItems : public ToolFixture {
 protected:
  void SetUp() override {
    ToolFixture::SetUp();
    ASSERT_TRUE(m_queue.Create());
  }
  void TearDown() override { m_queue.Destroy(); }

  void Insert(const std::string& commandLine, CWnd* progress, DWORD turn = kTurn) {
    auto* item = new TracedTiles(m_trace, m_strTiler, commandLine, progress, turn);
    g_pTilesJob = item;
    ASSERT_TRUE(m_queue.InsertWorkItem(item));
  }
  // Milliseconds until the item is gone.
  template <class Item>
  ULONGLONG Wait(std::atomic<Item*>& global) {
    const ULONGLONG start = GetTickCount64();
    while (global != nullptr && GetTickCount64() - start < 40000) KVT_PumpMessages();
    EXPECT_EQ(global, nullptr);
    return GetTickCount64() - start;
  }
  void WaitForPosition(int position) {
    for (int i = 0; i < 12000 && (m_window.positions.empty() || m_window.positions.back() != position); ++i) {
      KVT_PumpMessages();
      Sleep(10);
    }
    ASSERT_FALSE(m_window.positions.empty());
    ASSERT_EQ(m_window.positions.back(), position);
  }
  void RunTiles(const std::string& commandLine, CWnd* progress, DWORD turn = kTurn) {
    Insert(commandLine, progress, turn);
    Wait(g_pTilesJob);
    for (int i = 0; i < 12000 && m_trace.destroyed == 0; ++i) Sleep(10);
    EXPECT_EQ(m_trace.destroyed, 1);
  }

  std::string m_strTiler = m_folder.Path("python");
  CWorkQueue m_queue;
  Trace m_trace;
  ProgressWindow m_window;
};

TEST_F(ToolItems, ShowTheProgressThatTheScriptWrites) {
  RunTiles(" say:Progress_0.5_done", &m_window);
  EXPECT_EQ(m_window.positions, std::vector<int>{50});
  EXPECT_EQ(m_trace.status, kTilesEndedByItself);
}

TEST_F(ToolItems, TakeStandardErrorForOutputToo) {
  RunTiles(" fail:x_0.999_y", &m_window);
  EXPECT_EQ(m_window.positions, std::vector<int>{99});
}

TEST_F(ToolItems, ReadOneChunkInATurn) {
  Insert(" say:x_0.1_y_x_0.2_y_ await:" + m_folder.Path("on") + " say:x_0.7_y__________________________",
         &m_window);
  WaitForPosition(10);
  WriteFile(m_folder.Path("on"), "");
  Wait(g_pTilesJob);
  EXPECT_EQ(m_window.positions, (std::vector<int>{10, 70})) << "the first record of each chunk";
}

TEST_F(ToolItems, EndWithASilentScript) {
  RunTiles(" exit:1", &m_window);
  EXPECT_TRUE(m_window.positions.empty());
  EXPECT_EQ(m_trace.status, kTilesEndedByItself);
}

TEST_F(ToolItems, ReadNothingWithoutAProgressBar) {
  // More than the pipe holds: a script that nobody reads waits for ever.
  std::string commandLine = " touch:" + m_folder.Path("begun");
  for (int i = 0; i < 12; ++i) commandLine += " say:" + std::string(1000, 'x');
  Insert(commandLine + " touch:" + m_folder.Path("ended"), nullptr);
  for (int i = 0; i < 12000 && !FileExists(m_folder.Path("begun")); ++i) Sleep(10);
  Sleep(1000);
  EXPECT_TRUE(FileExists(m_folder.Path("begun")));
  EXPECT_FALSE(FileExists(m_folder.Path("ended")));
  AbortItem(g_pTilesJob);
  EXPECT_LT(Wait(g_pTilesJob), kOneTurn);
}

TEST_F(ToolItems, DoNotBeginAfterAnAbort) {
  auto* tiles = new TracedTiles(m_trace, m_strTiler, " touch:" + m_folder.Path("1"), &m_window, kTurn);
  auto* warp = new CGDALWarpThread(m_folder.Path("gdalwarp.exe"), " touch:" + m_folder.Path("2"));
  g_pTilesJob = tiles;
  g_pWarpJob = warp;
  AbortItem(g_pTilesJob);
  AbortItem(g_pWarpJob);
  m_queue.InsertWorkItem(tiles);
  m_queue.InsertWorkItem(warp);
  EXPECT_LT(Wait(g_pTilesJob), kOneTurn);
  EXPECT_LT(Wait(g_pWarpJob), kOneTurn);
  EXPECT_FALSE(FileExists(m_folder.Path("1")));
  EXPECT_FALSE(FileExists(m_folder.Path("2")));
}

TEST_F(ToolItems, FindTheInterpreterInTheToolFolderAndWorkThere) {
  RunTiles(" args:" + m_folder.Path("out.txt"), nullptr);
  const std::string text = ReadFile(m_folder.Path("out.txt"));
  EXPECT_EQ(text.substr(text.find('\n') + 1), m_folder.Path() + "\n");
}

TEST_F(ToolItems, RunTheEngineWhenItIsNamed) {
  m_strTiler = m_folder.Path("mosaicon-tiler.exe");
  ASSERT_TRUE(MoveFileA(m_folder.Path("python.exe").c_str(), m_strTiler.c_str()));
  RunTiles(" say:Progress_0.5_done args:" + m_folder.Path("out.txt"), &m_window);
  EXPECT_EQ(m_window.positions, std::vector<int>{50});
  const std::string text = ReadFile(m_folder.Path("out.txt"));
  EXPECT_EQ(text.substr(text.find('\n') + 1), m_folder.Path() + "\n");
  EXPECT_EQ(m_trace.status, kTilesEndedByItself);
}

TEST_F(ToolItems, EndAtOnceWithoutAnInterpreter) {
  DeleteFileA(m_folder.Path("python.exe").c_str());
  const ULONGLONG start = GetTickCount64();
  RunTiles(" say:x_0.5_y", &m_window);
  EXPECT_LT(GetTickCount64() - start, kOneTurn);
  EXPECT_EQ(m_trace.status, kTilesNotStarted);
}

TEST_F(ToolItems, KillATalkingScriptWithinOneTurn) {
  Insert(" say:x_0.1_y sleep:3000 say:x_0.2_y sleep:3000 say:x_0.3_y sleep:3000 say:x_0.4_y sleep:600000",
         &m_window);
  ASSERT_EQ(WaitForTools(1), 1);
  AbortItem(g_pTilesJob);
  EXPECT_LT(Wait(g_pTilesJob), kOneTurn);
  EXPECT_EQ(WaitForTools(0), 0);
}

TEST_F(ToolItems, WaitForTheNextOutputOfASilentScript) {
  Insert(" say:x_0.1_y await:" + m_folder.Path("on") + " say:x_0.5_y sleep:600000", &m_window);
  WaitForPosition(10);
  Sleep(2 * kTurn);  // it waits for its next turn now, or for the output
  AbortItem(g_pTilesJob);
  Sleep(4 * kTurn);
  EXPECT_NE(g_pTilesJob, nullptr);
  WriteFile(m_folder.Path("on"), "");
  EXPECT_LT(Wait(g_pTilesJob), 20000U);
  EXPECT_EQ(WaitForTools(0), 0);
}

TEST_F(ToolItems, KillAScriptThatNobodyReadsWithinOneTurn) {
  Insert(" sleep:600000", nullptr);
  ASSERT_EQ(WaitForTools(1), 1);
  AbortItem(g_pTilesJob);
  EXPECT_LT(Wait(g_pTilesJob), kOneTurn);
  EXPECT_EQ(WaitForTools(0), 0);
  for (int i = 0; i < 12000 && m_trace.destroyed == 0; ++i) Sleep(10);
  EXPECT_EQ(m_trace.status, kTilesNone) << "aborted, not ended by itself";
}

TEST_F(ToolItems, LeaveOnlyTheirPipesOpen) {
  const auto run = [&] {
    m_trace.destroyed = 0;
    RunTiles(" say:x_0.5_y", &m_window);
  };
  run();
  const int before = CountOpenHandles();
  for (int i = 0; i < 3; ++i) run();
  EXPECT_EQ(CountOpenHandles() - before, 3 * 4) << "two ends of two pipes for each run";
}

TEST_F(ToolItems, RunTheTranslatorByItsPath) {
  auto* item =
      new CGDALTranslateThread(m_folder.Path("gdal_translate.exe"), " args:" + m_folder.Path("out.txt"));
  g_pTranslateJob = item;
  m_queue.InsertWorkItem(item);
  EXPECT_LT(Wait(g_pTranslateJob), kOneTurn);
  EXPECT_NE(ReadFile(m_folder.Path("out.txt")).find("\n" + m_folder.Path() + "\n"), std::string::npos);
}

TEST_F(ToolItems, KillTheWarperWithinOneTurn) {
  auto* item = new CGDALWarpThread(m_folder.Path("gdalwarp.exe"), " sleep:600000", {kTurn, nullptr});
  g_pWarpJob = item;
  m_queue.InsertWorkItem(item);
  ASSERT_EQ(WaitForTools(1), 1);
  AbortItem(g_pWarpJob);
  EXPECT_LT(Wait(g_pWarpJob), kOneTurn);
  EXPECT_EQ(WaitForTools(0), 0);
}

TEST_F(ToolItems, EndAtOnceWithoutTheirTool) {
  auto* item = new CGDALWarpThread(m_folder.Path("none.exe"), " x");
  g_pWarpJob = item;
  m_queue.InsertWorkItem(item);
  EXPECT_LT(Wait(g_pWarpJob), kOneTurn);
}

}  // namespace
