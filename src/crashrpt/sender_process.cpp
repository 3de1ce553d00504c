#include "crashrpt/sender_process.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace {

auto Number(HANDLE handle) {
  return reinterpret_cast<uintptr_t>(handle);
}

}  // namespace

bool SenderProcess::Prepare(const std::string& program, const SenderHandles& handles, std::string& error) {
  if (program.size() >= sizeof m_program) {
    error = "The path of the sender is too long: " + program;
    return false;
  }
  std::memcpy(m_program, program.c_str(), program.size() + 1);
  std::memcpy(m_folder, m_program, program.rfind('\\') + 1);
  m_handles[0] = handles.handOver;
  m_handles[1] = handles.crashed;
  m_handles[2] = handles.reportTaken;
  m_handles[3] = handles.program;
  std::snprintf(m_waitCommand, sizeof m_waitCommand,
                "\"%s\" --wait %" PRIuPTR " %" PRIuPTR " %" PRIuPTR " %" PRIuPTR, m_program,
                Number(handles.handOver), Number(handles.crashed), Number(handles.reportTaken),
                Number(handles.program));
  std::snprintf(m_retryCommand, sizeof m_retryCommand, "\"%s\" --retry %" PRIuPTR, m_program,
                Number(handles.handOver));
  if (PrepareAttributes()) return true;
  error = "The start of the sender could not be prepared, error " + std::to_string(GetLastError()) + ".";
  return false;
}

bool SenderProcess::PrepareAttributes() {
  SIZE_T size = 0;
  InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
  if (size > sizeof m_attributes) return false;
  auto* const list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_attributes);
  return InitializeProcThreadAttributeList(list, 1, 0, &size) &&
         UpdateProcThreadAttribute(list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, m_handles, sizeof m_handles,
                                   nullptr, nullptr);
}

UniqueHandle SenderProcess::StartToWait() {
  const PROCESS_INFORMATION started = Start(m_waitCommand);
  m_waitingId = started.dwProcessId;
  // Here for its side effect: the first call of a thread into user32.dll needs the heap and the loader,
  // the next one does not.
  AllowToComeForward();
  return UniqueHandle(started.hProcess);
}

UniqueHandle SenderProcess::StartForRetry() {
  return UniqueHandle(Start(m_retryCommand).hProcess);
}

void SenderProcess::AllowToComeForward() const {
  AllowSetForegroundWindow(m_waitingId);
}

PROCESS_INFORMATION SenderProcess::Start(char* commandLine) {
  STARTUPINFOEXA startup = {};
  startup.StartupInfo.cb = sizeof startup;
  startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_attributes);
  PROCESS_INFORMATION started = {};
  // Inheritable only now: the tools that the program starts must not get them.
  SetInheritable(true);
  // Detached: it must not keep the console of the program, nor what its output is redirected to.
  const BOOL ok = CreateProcessA(m_program, commandLine, nullptr, nullptr, TRUE,
                                 EXTENDED_STARTUPINFO_PRESENT | DETACHED_PROCESS, nullptr, m_folder,
                                 &startup.StartupInfo, &started);
  SetInheritable(false);
  if (!ok) return {};
  const UniqueHandle thread(started.hThread);
  return started;
}

void SenderProcess::SetInheritable(bool inheritable) {
  for (HANDLE handle : m_handles) {
    SetHandleInformation(handle, HANDLE_FLAG_INHERIT, inheritable ? HANDLE_FLAG_INHERIT : 0);
  }
}
