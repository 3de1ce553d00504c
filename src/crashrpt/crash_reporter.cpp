#include "crashrpt/crash_reporter.h"

#include <shlobj.h>

#include <utility>
#include <vector>

#include "crashrpt/crashrpt.h"
#include "crashrpt/report_name.h"
#include "crashrpt/sender_process.h"
#include "files/system_files.h"
#include "handles/mapped_view.h"
#include "handles/unique_handle.h"

namespace {

// Milliseconds. The last one also bounds the callback of the program.
constexpr DWORD kReadyBound = 5000;
constexpr DWORD kReportBound = 60000;
constexpr DWORD kWholeBound = 75000;
// A sender that somebody ends is replaced so often: one that cannot run would be started for ever.
constexpr int kMaxReplacements = 3;
constexpr DWORD kReporterStack = 256 * 1024;

// Never torn down: a crash may come at any time, also while the process is ending.
struct Reporter {
  HandOver* handOver = nullptr;
  CrashCallback callback = nullptr;
  SenderHandles forSender = {};
  HANDLE ready = nullptr;    // event: a crash from now on is reported
  HANDLE crashed = nullptr;  // event, set by the thread that crashed
  DWORD threadId = 0;
  SenderProcess sender;
  volatile LONG crashedThread = 0;
  // Stand in for what a structured exception brings along.
  CONTEXT context = {};
  EXCEPTION_RECORD record = {};
  EXCEPTION_POINTERS pointers = {};
};
Reporter g_reporter;

[[noreturn]] void EndProcess(UINT exitCode) {
  for (;;) TerminateProcess(GetCurrentProcess(), exitCode);
}

bool HasUndelivered() {
  std::vector<FoundFile> found;
  SystemFiles().Find(std::string(g_reporter.handOver->reportFolder) + "\\pending\\*Z-*", found);
  return !found.empty();
}

void DeliverUndelivered() {
  if (g_reporter.handOver->uploadUrl[0] == '\0' || !HasUndelivered()) return;
  (void)g_reporter.sender.StartForRetry();
}

// Returns at the crash, with the sender that waits for it; null when there is none.
UniqueHandle KeepSenderUntilCrash(UniqueHandle sender) {
  for (int replacements = 0; sender != nullptr; ++replacements) {
    const HANDLE either[] = {g_reporter.crashed, sender.get()};
    if (WaitForMultipleObjects(2, either, FALSE, INFINITE) == WAIT_OBJECT_0) return sender;
    sender = replacements < kMaxReplacements ? g_reporter.sender.StartToWait() : nullptr;
  }
  WaitForSingleObject(g_reporter.crashed, INFINITE);
  return nullptr;
}

bool IsReportTaken(HANDLE sender) {
  g_reporter.sender.AllowToComeForward();
  SetEvent(g_reporter.forSender.crashed);
  const HANDLE either[] = {g_reporter.forSender.reportTaken, sender};
  return WaitForMultipleObjects(2, either, FALSE, kReportBound) == WAIT_OBJECT_0;
}

DWORD WINAPI RunReporter(void*) {
  UniqueHandle started = g_reporter.sender.StartToWait();
  SetEvent(g_reporter.ready);
  DeliverUndelivered();
  const UniqueHandle sender = KeepSenderUntilCrash(std::move(started));
  const bool wanted = g_reporter.callback == nullptr || g_reporter.callback(nullptr) != 0;
  EndProcess(wanted && sender != nullptr && IsReportTaken(sender.get()) ? CRASH_EXIT_REPORTED
                                                                        : CRASH_EXIT_UNREPORTED);
}

// The user's folder for data of this computer. Its variable may be missing where a service or a script
// has started the program; then the shell knows it, and where not even that, there is the one for
// temporary files.
std::string LocalDataFolder() {
  char folder[MAX_PATH + 2] = "";
  const DWORD length = GetEnvironmentVariableA("LOCALAPPDATA", folder, sizeof folder);
  if (length > 0 && length < sizeof folder) return folder;
  if (SHGetFolderPathA(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder) == S_OK) {
    return folder;
  }
  const DWORD temporaryLength = GetTempPathA(sizeof folder, folder);  // ends in a backslash
  return std::string(folder, temporaryLength > 0 ? temporaryLength - 1 : 0);
}

bool FillFolder(HandOver& handOver, std::string& error) {
  if (handOver.reportFolder[0] != '\0') return true;
  const std::string folder =
      LocalDataFolder() + "\\" + FileNameOf(handOver.applicationName) + "\\CrashReports";
  if (folder.size() >= sizeof handOver.reportFolder) {
    error = "The path of the folder for reports is too long: " + folder;
    return false;
  }
  folder.copy(handOver.reportFolder, folder.size());
  return true;
}

// What is opened together, and stays open when all went well.
class Resources {
 public:
  bool Open() {
    m_handOver.reset(
        CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(HandOver), nullptr));
    if (m_handOver == nullptr) return false;
    m_view.reset(static_cast<HandOver*>(MapViewOfFile(m_handOver.get(), FILE_MAP_ALL_ACCESS, 0, 0, 0)));
    for (UniqueHandle* event : {&m_crashedForSender, &m_reportTaken, &m_ready, &m_crashed}) {
      event->reset(CreateEventA(nullptr, TRUE, FALSE, nullptr));
      if (*event == nullptr) return false;
    }
    HANDLE program = nullptr;
    const BOOL duplicated = DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), GetCurrentProcess(),
                                            &program, 0, FALSE, DUPLICATE_SAME_ACCESS);
    m_program.reset(program);
    return m_view != nullptr && duplicated;
  }
  SenderHandles ForSender() const {
    return {m_handOver.get(), m_crashedForSender.get(), m_reportTaken.get(), m_program.get()};
  }
  HANDLE Ready() const { return m_ready.get(); }
  HANDLE Crashed() const { return m_crashed.get(); }
  HandOver* View() const { return m_view.get(); }
  // From here on nothing is closed before the process ends.
  void Keep() {
    (void)m_view.release();
    for (UniqueHandle* handle :
         {&m_handOver, &m_crashedForSender, &m_reportTaken, &m_program, &m_ready, &m_crashed}) {
      (void)handle->release();
    }
  }

 private:
  UniqueHandle m_handOver;
  UniqueHandle m_crashedForSender;
  UniqueHandle m_reportTaken;
  UniqueHandle m_program;
  UniqueHandle m_ready;
  UniqueHandle m_crashed;
  MappedView<HandOver> m_view;
};

EXCEPTION_POINTERS* PointersOfThisPlace(CrashKind kind) {
  RtlCaptureContext(&g_reporter.context);
  g_reporter.record.ExceptionCode = MadeUpCode(kind);
  g_reporter.record.ExceptionAddress = reinterpret_cast<void*>(g_reporter.context.Rip);
  g_reporter.pointers = {&g_reporter.record, &g_reporter.context};
  return &g_reporter.pointers;
}

void NoteFacts(CrashKind kind, const EXCEPTION_POINTERS* exception) {
  FILETIME now = {};
  GetSystemTimeAsFileTime(&now);
  CrashFacts& facts = g_reporter.handOver->crash;
  facts.kind = static_cast<uint32_t>(kind);
  facts.exceptionCode = exception->ExceptionRecord->ExceptionCode;
  facts.exceptionAddress = reinterpret_cast<uintptr_t>(exception->ExceptionRecord->ExceptionAddress);
  facts.exceptionPointers = reinterpret_cast<uintptr_t>(exception);
  facts.fileTime = static_cast<uint64_t>(now.dwHighDateTime) << 32U | now.dwLowDateTime;
  facts.processId = GetCurrentProcessId();
  facts.threadId = GetCurrentThreadId();
}

}  // namespace

bool StartCrashReporter(const CrashInstallInfo& info, const std::string& senderProgram,
                        const std::string& programName, std::string& error) {
  Resources resources;
  if (!resources.Open()) {
    error =
        "The hand-over to the sender could not be prepared, error " + std::to_string(GetLastError()) + ".";
    return false;
  }
  if (!FillHandOver(info, programName, *resources.View(), error) || !FillFolder(*resources.View(), error) ||
      !g_reporter.sender.Prepare(senderProgram, resources.ForSender(), error)) {
    return false;
  }
  g_reporter.handOver = resources.View();
  g_reporter.callback = info.callback;
  g_reporter.forSender = resources.ForSender();
  g_reporter.ready = resources.Ready();
  g_reporter.crashed = resources.Crashed();
  const UniqueHandle thread(CreateThread(nullptr, kReporterStack, RunReporter, nullptr,
                                         STACK_SIZE_PARAM_IS_A_RESERVATION, &g_reporter.threadId));
  if (thread == nullptr) {
    g_reporter.handOver = nullptr;
    error = "No thread for crash reports could be started, error " + std::to_string(GetLastError()) + ".";
    return false;
  }
  resources.Keep();
  // From the first moment on: a crash may come soon, and with the locks that starting takes.
  WaitForSingleObject(g_reporter.ready, kReadyBound);
  return true;
}

HandOver* InstalledHandOver() {
  return g_reporter.handOver;
}

void ReportCrash(CrashKind kind, EXCEPTION_POINTERS* exception) {
  const auto thisThread = static_cast<LONG>(GetCurrentThreadId());
  const LONG firstThread = InterlockedCompareExchange(&g_reporter.crashedThread, thisThread, 0);
  if (firstThread == thisThread || g_reporter.threadId == static_cast<DWORD>(thisThread)) {
    EndProcess(CRASH_EXIT_UNREPORTED);
  }
  if (firstThread == 0) {
    NoteFacts(kind, exception != nullptr ? exception : PointersOfThisPlace(kind));
    SetEvent(g_reporter.crashed);
  }
  Sleep(kWholeBound);
  EndProcess(CRASH_EXIT_UNREPORTED);
}
