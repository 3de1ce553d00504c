#include "job/child_process.h"

#include <cstring>

namespace {

constexpr size_t kCommandLineBuffer = 16000;
constexpr DWORD kDirectoryBuffer = 4096;
constexpr UINT kKilledExitCode = 9;

// The working directory is the process's own, not the thread's: it is changed for as short as can be.
class CurrentDirectory {
 public:
  explicit CurrentDirectory(const std::string& folder) {
    const DWORD length = GetCurrentDirectoryA(kDirectoryBuffer, m_saved);
    m_bSaved = length > 0 && length < kDirectoryBuffer;
    SetCurrentDirectoryA(folder.c_str());
  }
  ~CurrentDirectory() {
    if (m_bSaved) SetCurrentDirectoryA(m_saved);
  }
  CurrentDirectory(const CurrentDirectory&) = delete;
  CurrentDirectory& operator=(const CurrentDirectory&) = delete;

 private:
  char m_saved[kDirectoryBuffer];
  bool m_bSaved;
};

UniqueHandle MakeProcessTree() {
  UniqueHandle tree(CreateJobObjectA(nullptr, nullptr));
  if (tree == nullptr) return nullptr;
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(tree.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
  return tree;
}

}  // namespace

ChildProcess::~ChildProcess() {
  Terminate();
}

bool ChildProcess::Start(const char* application, const std::string& commandLine, const std::string& folder,
                         STARTUPINFOA& startup, bool inheritHandles) {
  if (commandLine.size() >= kCommandLineBuffer) return false;
  const UniqueHandle thread = CreateThere(application, commandLine, folder, startup, inheritHandles);
  if (thread == nullptr) return false;
  // It begins only when it is in the tree: what it started before would not belong to it, and would live on.
  m_tree = MakeProcessTree();
  AssignProcessToJobObject(m_tree.get(), m_process.get());
  constexpr auto kFailed = static_cast<DWORD>(-1);
  if (ResumeThread(thread.get()) != kFailed) return true;
  Terminate();
  return false;
}

UniqueHandle ChildProcess::CreateThere(const char* application, const std::string& commandLine,
                                       const std::string& folder, STARTUPINFOA& startup,
                                       bool inheritHandles) {
  // CreateProcess may write into the command line.
  char buffer[kCommandLineBuffer] = {};
  std::memcpy(buffer, commandLine.c_str(), commandLine.size());
  const CurrentDirectory there(folder);
  PROCESS_INFORMATION made = {};
  if (!CreateProcessA(application, buffer, nullptr, nullptr, inheritHandles,
                      CREATE_NO_WINDOW | CREATE_SUSPENDED, nullptr, nullptr, &startup, &made)) {
    return nullptr;
  }
  m_process.reset(made.hProcess);
  return UniqueHandle(made.hThread);
}

void ChildProcess::Terminate() {
  if (m_process == nullptr) return;
  TerminateProcess(m_process.get(), kKilledExitCode);
  m_process.reset();
  m_tree.reset();
}
