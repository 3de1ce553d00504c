#include "job/windows_tool_runner.h"

#include "job/tiler_log.h"
#include "kvtools/kvtools.h"

namespace {

constexpr DWORD kToolPollMilliseconds = 200;

// Runs one item on a queue of its own. Without a queue there is no run and no exit code, as with a tool that
// cannot be started.
template <class Item, class... Arguments>
void RunAndWait(std::atomic<Item*>& global, DWORD pause, const Arguments&... arguments) {
  g_pWorkQueue = new CWorkQueue;
  if (!g_pWorkQueue.load()->Create()) {
    delete g_pWorkQueue.exchange(nullptr);
    return;
  }
  Item* item = new Item(arguments...);
  global = item;
  if (!g_pWorkQueue.load()->InsertWorkItem(item)) {
    // The thread will never take it.
    DestroyWorkQueue();
    global = nullptr;
    delete item;
    return;
  }
  while (global != nullptr) {
    KVT_PumpMessages();
    if (pause > 0) Sleep(pause);
  }
  DestroyWorkQueue();
}

}  // namespace

ToolOutcome WindowsToolRunner::Run(const ToolRun& run) {
  ToolOutcome outcome;
  const ToolWatch watch = {m_nTurnMilliseconds, &outcome.exitCode};
  switch (run.tool) {
    case Tool::kTranslator:
      RunAndWait(g_pTranslateJob, kToolPollMilliseconds, run.program, run.arguments, watch);
      break;
    case Tool::kWarper:
      RunAndWait(g_pWarpJob, kToolPollMilliseconds, run.program, run.arguments, watch);
      break;
    case Tool::kTiler: {
      const TilerLog log(m_strTilerLog);
      RunAndWait(g_pTilesJob, 0, run.program, run.arguments, m_pProgress, watch);
      outcome.lastWords = log.ReadResultLine();
      outcome.log = m_strTilerLog;
      break;
    }
  }
  return outcome;
}

void DestroyWorkQueue() {
  // A handler that ran while messages were pumped may have done it already.
  if (CWorkQueue* queue = g_pWorkQueue.exchange(nullptr)) {
    queue->Destroy();
    delete queue;
  }
}
