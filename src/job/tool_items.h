// The work items that run the external tools. Each is made on the heap by the user-interface thread,
// stored in its global, queued, run once on the queue's thread, and deletes itself there as the last
// act of DoWork, right after it has cleared its global.
//
// No console handle is asked for before a chunk of output is read, as some runners do: it would not be used.
//
// Whoever waits for a run looks at the global. All that is told of it besides is the exit code.
#ifndef MOSAICON_JOB_TOOL_ITEMS_H_
#define MOSAICON_JOB_TOOL_ITEMS_H_

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "job/progress_record.h"
#include "job/work_item.h"
#include "job/work_queue.h"
#include "mfc/wnd.h"

// Status codes of CGDAL2TilesThread.
enum TilesStatus : int32_t {
  kTilesNone = 0,
  kTilesNoOutputPipe = 1,
  kTilesOutputPipeShared = 2,
  kTilesNoInputPipe = 3,
  kTilesInputPipeShared = 4,
  kTilesNotStarted = 5,
  kTilesEndedByItself = 6,
};

// How an item watches over its tool.
struct ToolWatch {
  // How often it looks whether the tool has ended or the item was aborted.
  DWORD turnMilliseconds = 5000;
  // Set when the tool has ended by itself, before the global is cleared. Belongs to whoever waits; may be
  // null.
  std::optional<uint32_t>* exitCode = nullptr;
};

// What the three items have in common. Abort does more than clear the running flag, and needs a flag of
// its own for it: an item that is aborted while it waits in the queue would set its running flag when
// it begins, and the abort would be lost.
class CToolItem : public CWorkItemBase {
 public:
  // Clears the running flag; the item kills its tool the next time it looks at it, and one that has
  // not begun yet does not begin.
  void Abort() override {
    m_bAbortAsked = 1;
    m_bRunning = 0;
  }

 protected:
  CToolItem(std::string strToolPath, std::string strCommandLine, ToolWatch watch)
      : m_strToolPath(std::move(strToolPath)), m_strCommandLine(std::move(strCommandLine)), m_watch(watch) {}

  // Sets the running flag; false when the item was aborted before it could begin.
  bool Begin() {
    m_bRunning = 1;
    if (m_bAbortAsked != 0) m_bRunning = 0;
    return m_bRunning != 0;
  }
  // Of a process that has ended by itself.
  void TellExitCode(HANDLE process);

  std::string m_strToolPath;
  std::string m_strCommandLine;
  std::atomic<int32_t> m_bRunning{0};  // set by the queue's thread, cleared by either
  std::atomic<int32_t> m_nStatus{0};   // written by the queue's thread, for diagnosis only
  const ToolWatch m_watch;

 private:
  std::atomic<int32_t> m_bAbortAsked{0};  // set by the user-interface thread, never cleared
};

// Runs the tile engine or "python.exe", as NameOfTiler() says, in the folder of its path with its output
// caught, and shows the progress that it writes.
class CGDAL2TilesThread : public CToolItem {
 public:
  // pProgressCtrl gets PBM_SETPOS with 0 to 100; null: the output is never read.
  CGDAL2TilesThread(std::string strToolPath, std::string strCommandLine, CWnd* pProgressCtrl,
                    ToolWatch watch = {})
      : CToolItem(std::move(strToolPath), std::move(strCommandLine), watch), m_pProgressCtrl(pProgressCtrl) {}
  ~CGDAL2TilesThread() override;
  void DoWork(void* pThreadData) override;

 private:
  bool MakePipes();
  void Watch(HANDLE process);
  void ReadProgress(HANDLE process, char (&buffer)[kProgressChunk]);

  CWnd* m_pProgressCtrl;
};

// Runs the program m_strToolPath and waits for its end.
class CGDALToolThread : public CToolItem {
 protected:
  using CToolItem::CToolItem;
  void RunTool();
};

class CGDALTranslateThread : public CGDALToolThread {
 public:
  CGDALTranslateThread(std::string strToolPath, std::string strCommandLine, ToolWatch watch = {})
      : CGDALToolThread(std::move(strToolPath), std::move(strCommandLine), watch) {}
  void DoWork(void* pThreadData) override;
};

class CGDALWarpThread : public CGDALToolThread {
 public:
  CGDALWarpThread(std::string strToolPath, std::string strCommandLine, ToolWatch watch = {})
      : CGDALToolThread(std::move(strToolPath), std::move(strCommandLine), watch) {}
  void DoWork(void* pThreadData) override;
};

// The run in progress. The queue belongs to the user-interface thread alone. An item's global is set
// by the user-interface thread before it is queued and cleared by the item itself; not null means
// that this tool is running.
extern std::atomic<CWorkQueue*> g_pWorkQueue;
extern std::atomic<CGDAL2TilesThread*> g_pTilesJob;
extern std::atomic<CGDALTranslateThread*> g_pTranslateJob;
extern std::atomic<CGDALWarpThread*> g_pWarpJob;

// The pipes of the interpreter run in progress. They are left open for the life of the process.
extern std::atomic<HANDLE> g_hOutputRead;
extern std::atomic<HANDLE> g_hOutputWrite;
extern std::atomic<HANDLE> g_hInputRead;
extern std::atomic<HANDLE> g_hInputWrite;

// While it lives, an item that has cleared its global is not deleted: the other side of the rule by
// which a pointer read from a global may be used. User-interface thread.
class ItemPin {
 public:
  ItemPin();
  ~ItemPin();
  ItemPin(const ItemPin&) = delete;
  ItemPin& operator=(const ItemPin&) = delete;
};

// Calls Abort on the item of a global, if there is one.
template <class Item>
void AbortItem(std::atomic<Item*>& global) {
  const ItemPin pin;
  if (Item* item = global.load()) item->Abort();
}

#endif  // MOSAICON_JOB_TOOL_ITEMS_H_
