#include "job/windows_tool_runner.h"

#include "job/tool_items.h"
#include "kvtools/kvtools.h"

namespace {

constexpr DWORD kToolPollMilliseconds = 200;

// Runs one item on a queue of its own. Without a queue there is no run: the driver sees that by the
// missing output, as with a tool that cannot be started.
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

void WindowsToolRunner::RunTranslator(const std::string& toolPath, const std::string& commandLine) {
  RunAndWait(g_pTranslateJob, kToolPollMilliseconds, toolPath, commandLine);
}

void WindowsToolRunner::RunWarper(const std::string& toolPath, const std::string& commandLine) {
  RunAndWait(g_pWarpJob, kToolPollMilliseconds, toolPath, commandLine);
}

void WindowsToolRunner::RunTiler(const std::string& toolPath, const std::string& commandLine) {
  RunAndWait(g_pTilesJob, 0, toolPath, commandLine, m_pProgress);
}

void DestroyWorkQueue() {
  // A handler that ran while messages were pumped may have done it already.
  if (CWorkQueue* queue = g_pWorkQueue.exchange(nullptr)) {
    queue->Destroy();
    delete queue;
  }
}
