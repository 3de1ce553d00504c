// Programs, each on a thread of its own, and the pipes that they talk into.
#include <algorithm>
#include <cstring>

#include "world.h"

using threads::Find;
using threads::Kind;
using threads::Lock;
using threads::Object;
using threads::Open;
using threads::Pipe;
using threads::TheWorld;
using threads::World;

namespace {

class RunningProgram : public threads::Program {
 public:
  RunningProgram(std::shared_ptr<Object> process, std::shared_ptr<Pipe> output)
      : m_process(std::move(process)), m_output(std::move(output)) {}
  void Say(const std::string& text) override {
    const Lock lock(TheWorld().mutex);
    if (m_output != nullptr && !m_process->killed) m_output->data += text;
  }
  bool Wait(DWORD milliseconds) override {
    Lock lock(TheWorld().mutex);
    TheWorld().changed.wait_for(lock, milliseconds * threads::kMillisecond,
                                [this] { return m_process->killed; });
    return !m_process->killed;
  }
  bool WaitUntilRead() override {
    Lock lock(TheWorld().mutex);
    TheWorld().changed.wait(lock, [this] { return m_process->killed || m_output->data.empty(); });
    return !m_process->killed;
  }
  bool IsInTree() override {
    const Lock lock(TheWorld().mutex);
    return m_process->inTree;
  }
  // False when it was killed before.
  bool Begin() {
    Lock lock(TheWorld().mutex);
    TheWorld().changed.wait(lock, [this] { return m_process->killed || !m_process->suspended; });
    return !m_process->killed;
  }
  void ExitWith(UINT exitCode) override { m_nExitCode = exitCode; }
  UINT ExitCode() const { return m_nExitCode; }

 private:
  UINT m_nExitCode = 0;  // of its own thread
  const std::shared_ptr<Object> m_process;
  const std::shared_ptr<Pipe> m_output;
};

// With the lock held.
void End(Object& process, UINT exitCode) {
  if (process.signalled) return;
  process.signalled = true;
  process.exitCode = exitCode;
  TheWorld().exitCodes.push_back(exitCode);
  TheWorld().changed.notify_all();
}

}  // namespace

BOOL CreatePipe(HANDLE* reading, HANDLE* writing, SECURITY_ATTRIBUTES* attributes, DWORD) {
  const Lock lock(TheWorld().mutex);
  if (threads::Fails("CreatePipe")) return FALSE;
  const auto pipe = std::make_shared<Pipe>();
  for (HANDLE* end : {reading, writing}) {
    *end = Open(Kind::kPipeEnd);
    TheWorld().open[*end]->pipe = pipe;
    TheWorld().open[*end]->inheritable = attributes->bInheritHandle != FALSE;
  }
  return TRUE;
}

BOOL SetHandleInformation(HANDLE handle, DWORD mask, DWORD flags) {
  const Lock lock(TheWorld().mutex);
  if (handle == nullptr || threads::Fails("SetHandleInformation")) return FALSE;
  const auto object = Find(handle, Kind::kPipeEnd);
  if (object == nullptr) return FALSE;
  if ((mask & HANDLE_FLAG_INHERIT) != 0) object->inheritable = (flags & HANDLE_FLAG_INHERIT) != 0;
  return TRUE;
}

BOOL PeekNamedPipe(HANDLE pipe, void*, DWORD, DWORD*, DWORD* available, DWORD*) {
  const Lock lock(TheWorld().mutex);
  const auto object = Find(pipe, Kind::kPipeEnd);
  if (object == nullptr) return FALSE;
  *available = static_cast<DWORD>(object->pipe->data.size());
  return TRUE;
}

// Called only when there is something to read.
BOOL ReadFile(HANDLE pipe, void* buffer, DWORD size, DWORD* read, void*) {
  const Lock lock(TheWorld().mutex);
  const auto object = Find(pipe, Kind::kPipeEnd);
  if (object == nullptr) return FALSE;
  std::string& data = object->pipe->data;
  *read = static_cast<DWORD>(std::min<size_t>(size, data.size()));
  std::memcpy(buffer, data.data(), *read);
  data.erase(0, *read);
  TheWorld().changed.notify_all();
  return TRUE;
}

BOOL CreateProcessA(const char* application, char* commandLine, SECURITY_ATTRIBUTES*, SECURITY_ATTRIBUTES*,
                    BOOL inheritHandles, DWORD flags, void*, const char*, STARTUPINFOA* startup,
                    PROCESS_INFORMATION* information) {
  World& world = TheWorld();
  const Lock lock(world.mutex);
  if (threads::Fails("CreateProcessA")) return FALSE;
  threads::Start start = {application, commandLine, world.directory, inheritHandles, flags, *startup, {}};
  for (const auto& [handle, object] : world.open) {
    if (inheritHandles && object->inheritable) start.inherited.push_back(handle);
  }
  world.starts.push_back(start);
  std::shared_ptr<Pipe> output;
  if (startup->hStdOutput != nullptr) output = Find(startup->hStdOutput, Kind::kPipeEnd)->pipe;
  const auto process = std::make_shared<Object>();
  process->suspended = (flags & CREATE_SUSPENDED) != 0;
  process->thread = std::thread([process, output, program = world.program] {
    RunningProgram running(process, output);
    if (running.Begin() && program) program(running);
    const Lock end(TheWorld().mutex);
    End(*process, running.ExitCode());
  });
  information->hProcess = Open(Kind::kProcess, process);
  information->hThread = Open(Kind::kThread);
  Find(information->hThread, Kind::kThread)->process = process;
  return TRUE;
}

BOOL TerminateProcess(HANDLE handle, UINT exitCode) {
  const Lock lock(TheWorld().mutex);
  const auto process = Find(handle, Kind::kProcess);
  if (process == nullptr) return FALSE;
  process->killed = true;
  End(*process, exitCode);
  TheWorld().changed.notify_all();
  return TRUE;
}

BOOL GetExitCodeProcess(HANDLE handle, DWORD* exitCode) {
  const Lock lock(TheWorld().mutex);
  if (handle == nullptr) return FALSE;
  const auto process = Find(handle, Kind::kProcess);
  if (process != nullptr) *exitCode = process->exitCode;
  return process != nullptr;
}

HANDLE CreateJobObjectA(SECURITY_ATTRIBUTES*, const char*) {
  const Lock lock(TheWorld().mutex);
  return Open(Kind::kJob);
}
BOOL SetInformationJobObject(HANDLE, JOBOBJECTINFOCLASS, void*, DWORD) {
  return TRUE;
}
BOOL AssignProcessToJobObject(HANDLE, HANDLE process) {
  const Lock lock(TheWorld().mutex);
  Find(process, Kind::kProcess)->inTree = true;
  return TRUE;
}
DWORD ResumeThread(HANDLE handle) {
  const Lock lock(TheWorld().mutex);
  if (threads::Fails("ResumeThread")) return static_cast<DWORD>(-1);
  Find(handle, Kind::kThread)->process->suspended = false;
  TheWorld().changed.notify_all();
  return 1;
}

DWORD GetCurrentDirectoryA(DWORD size, char* buffer) {
  const Lock lock(TheWorld().mutex);
  const std::string& directory = TheWorld().directory;
  if (directory.size() >= size) return static_cast<DWORD>(directory.size() + 1);
  std::memcpy(buffer, directory.c_str(), directory.size() + 1);
  return static_cast<DWORD>(directory.size());
}

BOOL SetCurrentDirectoryA(const char* directory) {
  const Lock lock(TheWorld().mutex);
  TheWorld().directory = directory;
  return TRUE;
}
