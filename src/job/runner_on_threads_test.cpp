// The queue, the items and the runner on standard threads instead of Windows: what they ask of the system,
// and every order in which two threads may meet. This is the test that the sanitizers watch; under Wine the
// same code runs with real processes (tool_items_test.cpp, windows_tool_runner_test.cpp).
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <thread>

#include "job/tool_items.h"
#include "job/windows_tool_runner.h"
#include "kvtools/kvtools.h"
#include "support/temporary_folder.h"
#include "win32_on_threads.h"

namespace {

using threads::Program;

constexpr char kTool[] = "C:\\tools\\python";
constexpr UINT kKilled = 9;
constexpr DWORD kForEver = 1000000;

class RunnerOnThreads : public testing::Test {
 protected:
  void SetUp() override { threads::Reset(); }
  void TearDown() override {
    EXPECT_EQ(g_pWorkQueue, nullptr);
    EXPECT_EQ(g_pTilesJob, nullptr);
    EXPECT_EQ(g_pTranslateJob, nullptr);
    EXPECT_EQ(g_pWarpJob, nullptr);
    EXPECT_EQ(threads::Mistakes(), 0) << "handles that are not open";
    threads::SetOnPump(nullptr);
    threads::Reset();
  }

  ToolOutcome Run(Tool tool, const std::string& program = kTool, const std::string& arguments = " x") {
    return m_runner.Run({tool, program, arguments, "", "", ""});
  }
  ToolOutcome Tile() { return Run(Tool::kTiler, kTool, " script"); }

  CWnd m_progress;
  WindowsToolRunner m_runner{&m_progress};
};

// Tells the status of an item that deletes itself.
template <class Item>
class Traced : public Item {
 public:
  template <class... Arguments>
  explicit Traced(std::atomic<int32_t>& status, Arguments... arguments)
      : Item(arguments...), m_status(status) {}
  ~Traced() override { m_status = this->m_nStatus.load(); }

 private:
  std::atomic<int32_t>& m_status;
};

// The status at the end of one run of an item; -1 when the item was not deleted.
template <class Item, class... Arguments>
int32_t RunForStatus(std::atomic<Item*>& global, Arguments... arguments) {
  std::atomic<int32_t> status{-1};
  CWorkQueue queue;
  EXPECT_TRUE(queue.Create());
  Item* item = new Traced<Item>(status, arguments...);
  global = item;
  EXPECT_TRUE(queue.InsertWorkItem(item));
  while (global != nullptr) KVT_PumpMessages();
  queue.Destroy();
  return status;
}

// What the handlers of a window do when they run in the middle of a run.
void AbortTheScript() {
  if (g_pTilesJob == nullptr) return;
  AbortItem(g_pTilesJob);
  while (g_pTilesJob != nullptr) {
    threads::DispatchSent();
    Sleep(100);
  }
  DestroyWorkQueue();
}

template <class Item>
void AbortAndWait(std::atomic<Item*>& global) {
  AbortItem(global);
  while (global != nullptr) {
    threads::DispatchSent();
    Sleep(100);
  }
}

void CloseTheWindow() {
  AbortAndWait(g_pTilesJob);
  AbortAndWait(g_pTranslateJob);
  AbortAndWait(g_pWarpJob);
  DestroyWorkQueue();
}

TEST_F(RunnerOnThreads, GivesTheInterpreterItsEndsOfThePipesAndNoWindow) {
  HANDLE outputRead = nullptr;
  HANDLE inputWrite = nullptr;
  threads::SetProgram([&](Program&) {
    outputRead = g_hOutputRead;
    inputWrite = g_hInputWrite;
  });
  Tile();
  ASSERT_EQ(threads::Starts().size(), 1U);
  const threads::Start start = threads::Starts()[0];
  EXPECT_EQ(start.application, "python.exe");
  EXPECT_EQ(start.commandLine, " script");
  EXPECT_EQ(start.directory, "C:\\tools\\");
  EXPECT_EQ(start.flags, CREATE_NO_WINDOW | CREATE_SUSPENDED);
  EXPECT_TRUE(start.inheritHandles);
  EXPECT_EQ(start.startup.dwFlags, STARTF_USESTDHANDLES);
  EXPECT_EQ(start.startup.hStdOutput, start.startup.hStdError);
  const std::set<HANDLE> inherited(start.inherited.begin(), start.inherited.end());
  EXPECT_EQ(inherited, (std::set<HANDLE>{start.startup.hStdInput, start.startup.hStdOutput}));
  EXPECT_EQ(inherited.count(outputRead) + inherited.count(inputWrite), 0U);
  EXPECT_EQ(inherited.count(nullptr), 0U);
}

TEST_F(RunnerOnThreads, LeavesItsPipesOpenAndToNobodyElse) {
  Tile();
  EXPECT_EQ(threads::OpenHandles(), 4);
  for (std::atomic<HANDLE>* global : {&g_hOutputRead, &g_hOutputWrite, &g_hInputRead, &g_hInputWrite}) {
    EXPECT_EQ(*global, nullptr);
  }
  Tile();
  EXPECT_EQ(threads::OpenHandles(), 8);
  EXPECT_EQ(threads::Starts()[1].inherited.size(), 2U) << "its own";
}

TEST_F(RunnerOnThreads, LetsAToolBeginOnlyInItsTree) {
  std::atomic<int> inTree = 0;
  threads::SetProgram([&](Program& program) { inTree += program.IsInTree() ? 1 : 0; });
  Tile();
  Run(Tool::kWarper, "C:\\tools\\gdalwarp.exe");
  EXPECT_EQ(inTree, 2);
}

TEST_F(RunnerOnThreads, GivesTheGdalToolsNothing) {
  Run(Tool::kTranslator, "C:\\tools\\gdal_translate.exe");
  Run(Tool::kWarper, "C:\\tools\\gdalwarp.exe");
  ASSERT_EQ(threads::Starts().size(), 2U);
  for (const threads::Start& start : threads::Starts()) {
    EXPECT_EQ(start.flags, CREATE_NO_WINDOW | CREATE_SUSPENDED);
    EXPECT_FALSE(start.inheritHandles);
    EXPECT_EQ(start.startup.dwFlags, 0U);
    EXPECT_EQ(start.directory, "C:\\tools\\");
  }
  EXPECT_EQ(threads::Starts()[1].application, "C:\\tools\\gdalwarp.exe");
  EXPECT_EQ(threads::OpenHandles(), 0);
}

TEST_F(RunnerOnThreads, LooksAfterTheGdalToolsFiveTimesASecondAndAfterTheScriptAllTheTime) {
  threads::SetProgram([](Program& program) { program.Wait(1000); });
  Run(Tool::kWarper);
  const std::vector<DWORD> sleeps = threads::SleepsOfInterface();
  ASSERT_FALSE(sleeps.empty());
  for (const DWORD milliseconds : sleeps) EXPECT_EQ(milliseconds, 200U);
  Tile();
  EXPECT_EQ(threads::SleepsOfInterface().size(), sleeps.size());
}

TEST_F(RunnerOnThreads, TakesTurnsOfFiveSecondsAndPumpsInEach) {
  threads::SetProgram([](Program& program) {
    for (int i = 0; i < 3; ++i) {
      program.Say("x 0.1 y ");
      program.WaitUntilRead();
    }
  });
  Tile();
  size_t turns = 0;
  for (const DWORD milliseconds : threads::WaitsOfOthers()) turns += milliseconds == 5000 ? 1 : 0;
  EXPECT_GE(turns, 3U);
  EXPECT_EQ(threads::PumpsOfOthers(), static_cast<int>(turns));
}

TEST_F(RunnerOnThreads, TakesTurnsOfAnotherLengthWhenTold) {
  WindowsToolRunner runner(&m_progress, "", 70);
  for (const Tool tool : {Tool::kTranslator, Tool::kWarper, Tool::kTiler}) {
    const size_t before = threads::WaitsOfOthers().size();
    runner.Run({tool, kTool, " x", "", "", ""});
    const std::vector<DWORD> waits = threads::WaitsOfOthers();
    ASSERT_GT(waits.size(), before);
    EXPECT_EQ(waits[before], 70U);
  }
}

TEST_F(RunnerOnThreads, KeepsWhatAnEarlierChunkLeftInTheBuffer) {
  threads::SetProgram([](Program& program) {
    program.Say("Progress 0.25 done");
    program.WaitUntilRead();
    program.Say("P");
  });
  Tile();
  EXPECT_EQ(m_progress.Positions(), (std::vector<int>{25, 25})) << "the second chunk is one letter";
}

TEST_F(RunnerOnThreads, TellsTheExitCodeOfAToolThatEndedByItself) {
  for (const Tool tool : {Tool::kTranslator, Tool::kWarper, Tool::kTiler}) {
    for (const UINT exitCode : {0U, 3U, 0xC0000005U}) {
      threads::SetProgram([exitCode](Program& program) { program.ExitWith(exitCode); });
      EXPECT_EQ(Run(tool).exitCode, exitCode);
    }
    threads::FailAt("CreateProcessA", 1);
    EXPECT_EQ(Run(tool).exitCode, std::nullopt) << "not started";
    threads::FailAt("ResumeThread", 1);
    EXPECT_EQ(Run(tool).exitCode, std::nullopt) << "never began";
  }
}

TEST_F(RunnerOnThreads, TellsTheLastWordsOfTheScriptAlone) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("tiler.log");
  WindowsToolRunner runner(&m_progress, path);
  WriteFile(path, "RESULT OK\n");
  threads::SetProgram([&](Program&) { WriteFile(path, "RESULT OK\nSTART\nRESULT FAILED no memory\n"); });
  const ToolOutcome outcome = runner.Run({Tool::kTiler, kTool, " x", "", "", ""});
  EXPECT_EQ(outcome.lastWords, "RESULT FAILED no memory");
  EXPECT_EQ(outcome.log, path);
  EXPECT_EQ(runner.Run({Tool::kWarper, kTool, " x", "", "", ""}).lastWords, "");
  EXPECT_EQ(runner.Run({Tool::kTiler, kTool, " x", "", "", ""}).lastWords, "") << "nothing was added";
}

TEST_F(RunnerOnThreads, NotesHowFarARunOfTheInterpreterGot) {
  struct Case {
    const char* failing;
    int call;
    int32_t status;
    size_t starts;
  };
  const Case cases[] = {{"none", 1, kTilesEndedByItself, 1},
                        {"CreateProcessA", 1, kTilesNotStarted, 1},
                        {"CreatePipe", 2, kTilesNoInputPipe, 0}};
  for (const Case& each : cases) {
    threads::Reset();
    threads::FailAt(each.failing, each.call);
    EXPECT_EQ(RunForStatus(g_pTilesJob, std::string(kTool), std::string(" x"), &m_progress), each.status)
        << each.failing;
    EXPECT_EQ(threads::Starts().size() + (each.status == kTilesNotStarted ? 1 : 0), each.starts)
        << each.failing;
  }
}

// These are tried all the same; the end by itself would take the place of what was noted.
TEST_F(RunnerOnThreads, NotesWhatWasWrongWithThePipesOfARunThatWasAborted) {
  struct Case {
    const char* failing;
    int call;
    int32_t status;
  };
  const Case cases[] = {{"none", 1, kTilesNone},
                        {"CreatePipe", 1, kTilesOutputPipeShared},
                        {"SetHandleInformation", 1, kTilesOutputPipeShared},
                        {"SetHandleInformation", 2, kTilesInputPipeShared}};
  for (const Case& each : cases) {
    threads::Reset();
    threads::FailAt(each.failing, each.call);
    threads::SetProgram([](Program& program) { program.Wait(kForEver); });
    threads::SetOnPump([] {
      if (!threads::Starts().empty()) AbortItem(g_pTilesJob);
    });
    CWnd* unread = nullptr;
    EXPECT_EQ(RunForStatus(g_pTilesJob, std::string(kTool), std::string(" x"), unread), each.status)
        << each.failing << each.call;
    EXPECT_EQ(threads::ExitCodes(), std::vector<UINT>{kKilled});
  }
}

TEST_F(RunnerOnThreads, NotesNothingOfAGdalTool) {
  for (const char* failing : {"none", "CreateProcessA"}) {
    threads::FailAt(failing, 1);
    EXPECT_EQ(RunForStatus(g_pWarpJob, std::string(kTool), std::string(" x")), 0) << failing;
    EXPECT_EQ(RunForStatus(g_pTranslateJob, std::string(kTool), std::string(" x")), 0) << failing;
  }
}

TEST_F(RunnerOnThreads, ReturnsWhenAnythingOfItsOwnCannotBeMade) {
  for (const char* failing : {"CreateSemaphoreA", "CreateEventA", "_beginthreadex", "ReleaseSemaphore"}) {
    threads::FailAt(failing, 1);
    Tile();
    EXPECT_TRUE(threads::Starts().empty()) << failing;
    EXPECT_EQ(threads::OpenHandles(), 0) << failing;
    EXPECT_EQ(g_pTilesJob, nullptr) << failing;
    EXPECT_EQ(g_pWorkQueue, nullptr) << failing;
  }
  Tile();
  EXPECT_EQ(threads::Starts().size(), 1U) << "and works again";
}

TEST_F(RunnerOnThreads, HasAQueueThatMayBeDestroyedBeforeItIsCreated) {
  CWorkQueue queue;
  queue.Destroy();
  EXPECT_EQ(threads::Mistakes(), 0);
  EXPECT_TRUE(queue.Create());
  queue.Destroy();
  queue.Destroy();
  EXPECT_EQ(threads::OpenHandles(), 0);
}

TEST_F(RunnerOnThreads, TakesItemsWhileOthersAreInserted) {
  class Item : public CWorkItemBase {
   public:
    explicit Item(std::vector<int>& done, int number) : m_done(done), m_number(number) {}
    void DoWork(void*) override {
      m_done.push_back(m_number);
      delete this;
    }
    void Abort() override { DoWork(nullptr); }

   private:
    std::vector<int>& m_done;  // of the queue's thread, until it has ended
    const int m_number;
  };
  std::vector<int> done;
  std::vector<int> all;
  CWorkQueue queue;
  ASSERT_TRUE(queue.Create());
  for (int i = 0; i < 5000; ++i) {
    EXPECT_TRUE(queue.InsertWorkItem(new Item(done, i)));
    all.push_back(i);
  }
  queue.Destroy();
  EXPECT_EQ(done, all) << "worked or aborted, in order";
}

TEST_F(RunnerOnThreads, BeginsNothingThatWasAbortedInTheQueue) {
  CWorkQueue queue;
  ASSERT_TRUE(queue.Create());
  auto* item = new CGDALWarpThread(kTool, " x");
  g_pWarpJob = item;
  AbortItem(g_pWarpJob);
  ASSERT_TRUE(queue.InsertWorkItem(item));
  while (g_pWarpJob != nullptr) KVT_PumpMessages();
  queue.Destroy();
  EXPECT_TRUE(threads::Starts().empty());
}

TEST_F(RunnerOnThreads, KillsAnyToolWhenTheWindowCloses) {
  for (const Tool tool : {Tool::kTranslator, Tool::kWarper}) {
    threads::Reset();
    threads::SetProgram([](Program& program) { program.Wait(kForEver); });
    threads::SetOnPump([] {
      if (!threads::Starts().empty()) CloseTheWindow();
    });
    EXPECT_EQ(Run(tool).exitCode, std::nullopt) << "ended from outside";
    EXPECT_EQ(threads::ExitCodes(), std::vector<UINT>{kKilled});
  }
}

// A pointer that was read from a global must stay good while it is used.
TEST_F(RunnerOnThreads, CanBeAbortedWhileTheItemEnds) {
  CWorkQueue queue;
  ASSERT_TRUE(queue.Create());
  for (int i = 0; i < 1000; ++i) {
    threads::FailAt("CreateProcessA", 1);
    auto* item = new CGDALWarpThread(kTool, " x");
    g_pWarpJob = item;
    queue.InsertWorkItem(item);
    // Without pause, but for the other thread's sake on a busy machine.
    for (int aborts = 1; g_pWarpJob != nullptr; ++aborts) {
      AbortItem(g_pWarpJob);
      if (aborts % 100 == 0) std::this_thread::yield();
    }
  }
  queue.Destroy();
  EXPECT_TRUE(threads::Starts().empty());
}

TEST_F(RunnerOnThreads, BearsAnyHandlerAtAnyMoment) {
  std::mt19937 random(20261121);
  const auto below = [&random](unsigned limit) { return random() % limit; };
  size_t tiled = 0;
  for (int run = 0; run < 300; ++run) {
    threads::Reset();
    const DWORD pause = below(400);
    const unsigned words = below(5);
    threads::SetProgram([pause, words](Program& program) {
      for (unsigned i = 0; i < words && program.Wait(pause); ++i) program.Say("x 0.5 y ");
    });
    if (below(10) == 0) threads::FailAt("CreateProcessA", 1);
    const unsigned handler = below(4);
    unsigned pumpsLeft = below(60);
    threads::SetOnPump([&] {
      if (pumpsLeft-- != 0) return;
      if (handler == 1) AbortItem(g_pTilesJob);
      if (handler == 2) AbortTheScript();
      if (handler == 3) CloseTheWindow();
    });
    const Tool tool = static_cast<Tool>(below(3));
    Run(tool);
    tiled += tool == Tool::kTiler ? 1 : 0;
    EXPECT_EQ(g_pWorkQueue, nullptr);
    EXPECT_TRUE(threads::OpenHandles() == 0 || (tool == Tool::kTiler && threads::OpenHandles() == 4)) << run;
    EXPECT_EQ(threads::ExitCodes().size(), threads::Starts().size()) << "every tool has ended";
  }
  EXPECT_GT(tiled, 50U);
}

}  // namespace
