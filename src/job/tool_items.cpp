#include "job/tool_items.h"

#include <commctrl.h>

#include "job/child_process.h"
#include "job/tool_paths.h"
#include "kvtools/kvtools.h"
#include "kvtools/split_path.h"

std::atomic<CWorkQueue*> g_pWorkQueue{nullptr};
std::atomic<CGDAL2TilesThread*> g_pTilesJob{nullptr};
std::atomic<CGDALTranslateThread*> g_pTranslateJob{nullptr};
std::atomic<CGDALWarpThread*> g_pWarpJob{nullptr};
std::atomic<HANDLE> g_hOutputRead{nullptr};
std::atomic<HANDLE> g_hOutputWrite{nullptr};
std::atomic<HANDLE> g_hInputRead{nullptr};
std::atomic<HANDLE> g_hInputWrite{nullptr};

namespace {

constexpr DWORD kOutputPollMilliseconds = 20;
constexpr size_t kToolFolderBuffer = 2048;

// Written by the user-interface thread, read by the queue's thread before it deletes an item.
std::atomic<int32_t> g_nItemPins{0};

// Drive and directory of a path; empty when it is too long to be one.
std::string FolderOf(const std::string& path) {
  const PathParts parts = SplitPath(path);
  const std::string folder = parts.drive + parts.directory;
  return folder.size() < kToolFolderBuffer ? folder : std::string();
}

// A pipe whose handles are inheritable, into the two globals.
bool MakePipe(std::atomic<HANDLE>& readEnd, std::atomic<HANDLE>& writeEnd) {
  SECURITY_ATTRIBUTES attributes = {sizeof attributes, nullptr, TRUE};
  HANDLE reading = nullptr;
  HANDLE writing = nullptr;
  if (!CreatePipe(&reading, &writing, &attributes, 0)) return false;
  readEnd = reading;
  writeEnd = writing;
  return true;
}

bool MakePrivate(HANDLE handle) {
  return SetHandleInformation(handle, HANDLE_FLAG_INHERIT, 0) != FALSE;
}

// Waits until the pipe has something to read. False when the process has ended without: a plain read
// would never return then, because this process holds the writing end open too.
bool WaitForOutput(HANDLE pipe, HANDLE process) {
  for (;;) {
    // Asked in this order, so that the last words of a process are not missed.
    const bool ended = WaitForSingleObject(process, 0) != WAIT_TIMEOUT;
    DWORD available = 0;
    if (!PeekNamedPipe(pipe, nullptr, 0, nullptr, &available, nullptr)) return false;
    if (available > 0) return true;
    if (ended) return false;
    WaitForSingleObject(process, kOutputPollMilliseconds);
  }
}

// The end of every DoWork: the global first, for whoever waits on it, then the item.
template <class Item>
void Finish(std::atomic<Item*>& global, Item* item) {
  global = nullptr;
  while (g_nItemPins != 0) Sleep(0);
  delete item;
}

}  // namespace

ItemPin::ItemPin() {
  ++g_nItemPins;
}
ItemPin::~ItemPin() {
  --g_nItemPins;
}

void CToolItem::TellExitCode(HANDLE process) {
  DWORD exitCode = 0;
  if (m_watch.exitCode != nullptr && GetExitCodeProcess(process, &exitCode)) *m_watch.exitCode = exitCode;
}

CGDAL2TilesThread::~CGDAL2TilesThread() {
  g_hOutputRead = nullptr;
  g_hOutputWrite = nullptr;
  g_hInputRead = nullptr;
  g_hInputWrite = nullptr;
}

void CGDAL2TilesThread::DoWork(void* /*pThreadData*/) {
  if (Begin() && MakePipes()) {
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = g_hInputRead;
    startup.hStdOutput = g_hOutputWrite;
    startup.hStdError = g_hOutputWrite;
    ChildProcess tiler;
    const bool started = tiler.Start(NameOfTiler(m_strToolPath).c_str(), m_strCommandLine,
                                     FolderOf(m_strToolPath), startup, true);
    // They stay open, but the programs of later runs need not inherit them.
    MakePrivate(startup.hStdOutput);
    MakePrivate(startup.hStdInput);
    if (started) {
      Watch(tiler.Process());
    } else {
      m_nStatus = kTilesNotStarted;
    }
    tiler.Terminate();
  }
  m_bRunning = 0;
  Finish(g_pTilesJob, this);
}

// Only a missing input pipe ends the item; the other failures are noted and the run is tried.
bool CGDAL2TilesThread::MakePipes() {
  if (!MakePipe(g_hOutputRead, g_hOutputWrite)) m_nStatus = kTilesNoOutputPipe;
  if (!MakePrivate(g_hOutputRead)) m_nStatus = kTilesOutputPipeShared;
  if (!MakePipe(g_hInputRead, g_hInputWrite)) {
    m_nStatus = kTilesNoInputPipe;
    return false;
  }
  if (!MakePrivate(g_hInputWrite)) m_nStatus = kTilesInputPipeShared;
  return true;
}

void CGDAL2TilesThread::Watch(HANDLE process) {
  // Neither cleared nor terminated between reads: the parser knows.
  char buffer[kProgressChunk] = {};
  DWORD result = WAIT_TIMEOUT;
  while (result == WAIT_TIMEOUT && m_bRunning != 0) {
    result = WaitForSingleObject(process, m_watch.turnMilliseconds);
    if (m_pProgressCtrl != nullptr && g_hOutputRead != nullptr) ReadProgress(process, buffer);
    KVT_PumpMessages();
  }
  if (m_bRunning != 0 && result != WAIT_TIMEOUT) {
    m_nStatus = kTilesEndedByItself;
    TellExitCode(process);
  }
}

// One read of one chunk. Blocks while the script is silent and running.
void CGDAL2TilesThread::ReadProgress(HANDLE process, char (&buffer)[kProgressChunk]) {
  DWORD count = 0;
  if (!WaitForOutput(g_hOutputRead, process)) return;
  if (!ReadFile(g_hOutputRead, buffer, sizeof buffer, &count, nullptr)) return;
  SendMessageA(m_pProgressCtrl->GetSafeHwnd(), PBM_SETPOS, static_cast<WPARAM>(ParseProgressChunk(buffer)),
               0);
}

void CGDALToolThread::RunTool() {
  if (!Begin()) return;
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  ChildProcess tool;
  const bool started =
      tool.Start(m_strToolPath.c_str(), m_strCommandLine, FolderOf(m_strToolPath), startup, false);
  m_nStatus = 0;
  if (!started) {
    // There is no process to ask, so this is the value before the call.
    DWORD exitCode = 0;
    GetExitCodeProcess(tool.Process(), &exitCode);
    m_nStatus = static_cast<int32_t>(exitCode);
  }
  DWORD result = WAIT_TIMEOUT;
  while (started && m_bRunning != 0 && result == WAIT_TIMEOUT) {
    result = WaitForSingleObject(tool.Process(), m_watch.turnMilliseconds);
  }
  if (started && result != WAIT_TIMEOUT) TellExitCode(tool.Process());
  tool.Terminate();
  m_bRunning = 0;
}

void CGDALTranslateThread::DoWork(void* /*pThreadData*/) {
  RunTool();
  Finish(g_pTranslateJob, this);
}

void CGDALWarpThread::DoWork(void* /*pThreadData*/) {
  RunTool();
  Finish(g_pWarpJob, this);
}
