#include "win32_on_threads.h"

#include <commctrl.h>
#include <process.h>

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

#include "kvtools/kvtools.h"
#include "mfc/wnd.h"

namespace {

enum class Kind { kEvent, kSemaphore, kThread, kProcess, kPipeEnd, kJob };

struct Pipe {
  std::string data;
};

// What a handle stands for. Everything in it is guarded by the world's mutex.
struct Object {
  Kind kind = Kind::kEvent;
  bool inheritable = false;
  bool signalled = false;
  LONG count = 0;
  std::shared_ptr<Pipe> pipe;
  UINT exitCode = 0;
  bool killed = false;
  std::thread thread;
};

struct Sent {
  HWND window;
  UINT message;
  WPARAM wParam;
  bool done = false;
};

struct World {
  std::mutex mutex;
  std::condition_variable changed;
  std::map<HANDLE, std::shared_ptr<Object>> open;
  std::thread::id interface;
  std::vector<Sent*> sent;
  std::string directory = "C:\\start";
  std::function<void(threads::Program&)> program;
  std::function<void()> onPump;
  std::map<std::string, int> calls;
  std::set<std::pair<std::string, int>> failing;
  std::vector<threads::Start> starts;
  std::vector<UINT> exitCodes;
  std::vector<DWORD> interfaceSleeps;
  std::vector<DWORD> otherWaits;
  int otherPumps = 0;
  int mistakes = 0;
};

World& TheWorld() {
  static World world;
  return world;
}

using Lock = std::unique_lock<std::mutex>;

// With the lock held: the open object of a handle; null, and a mistake, when there is none.
std::shared_ptr<Object> Find(HANDLE handle, Kind kind) {
  World& world = TheWorld();
  const auto found = world.open.find(handle);
  if (found != world.open.end() && found->second->kind == kind) return found->second;
  ++world.mistakes;
  return nullptr;
}

// With the lock held.
HANDLE Open(Kind kind, std::shared_ptr<Object> object = std::make_shared<Object>()) {
  object->kind = kind;
  TheWorld().open[object.get()] = object;
  return object.get();
}

// With the lock held.
bool Fails(const std::string& function) {
  World& world = TheWorld();
  return world.failing.count({function, ++world.calls[function]}) > 0;
}

bool IsInterface() {
  return std::this_thread::get_id() == TheWorld().interface;
}

// With the lock held. Waits until ready, or for that long; false when the time was over.
template <class Ready>
bool WaitUntil(Lock& lock, DWORD milliseconds, Ready ready) {
  World& world = TheWorld();
  if (milliseconds == INFINITE) {
    world.changed.wait(lock, ready);
    return true;
  }
  if (milliseconds > 0 && !IsInterface()) world.otherWaits.push_back(milliseconds);
  return world.changed.wait_for(lock, milliseconds * threads::kMillisecond, ready);
}

bool IsReady(const Object& object) {
  return object.signalled || object.count > 0;
}

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

 private:
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

namespace threads {

void Reset() {
  World& world = TheWorld();
  std::map<HANDLE, std::shared_ptr<Object>> left;
  {
    const Lock lock(world.mutex);
    left.swap(world.open);
    for (auto& [handle, object] : left) object->killed = true;
    world.changed.notify_all();
  }
  for (auto& [handle, object] : left) {
    if (object->thread.joinable()) object->thread.join();
  }
  const Lock lock(world.mutex);
  world.interface = std::this_thread::get_id();
  world.program = nullptr;
  world.onPump = nullptr;
  world.calls.clear();
  world.failing.clear();
  world.starts.clear();
  world.exitCodes.clear();
  world.interfaceSleeps.clear();
  world.otherWaits.clear();
  world.otherPumps = 0;
  world.mistakes = 0;
}

void SetProgram(std::function<void(Program&)> program) {
  const Lock lock(TheWorld().mutex);
  TheWorld().program = std::move(program);
}

void FailAt(const std::string& function, int call) {
  const Lock lock(TheWorld().mutex);
  TheWorld().calls[function] = 0;
  TheWorld().failing.insert({function, call});
}

void SetOnPump(std::function<void()> onPump) {
  const Lock lock(TheWorld().mutex);
  TheWorld().onPump = std::move(onPump);
}

void DispatchSent() {
  World& world = TheWorld();
  Lock lock(world.mutex);
  while (!world.sent.empty()) {
    Sent& sent = *world.sent.front();
    world.sent.erase(world.sent.begin());
    if (sent.message == PBM_SETPOS) sent.window->positions.push_back(static_cast<int>(sent.wParam));
    sent.done = true;
    world.changed.notify_all();
  }
}

std::vector<Start> Starts() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().starts;
}
std::vector<UINT> ExitCodes() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().exitCodes;
}
std::vector<DWORD> SleepsOfInterface() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().interfaceSleeps;
}
std::vector<DWORD> WaitsOfOthers() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().otherWaits;
}
int PumpsOfOthers() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().otherPumps;
}
int OpenHandles() {
  const Lock lock(TheWorld().mutex);
  return static_cast<int>(TheWorld().open.size());
}
int Mistakes() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().mistakes;
}
bool IsInheritable(HANDLE object) {
  const Lock lock(TheWorld().mutex);
  const auto found = TheWorld().open.find(object);
  return found != TheWorld().open.end() && found->second->inheritable;
}

}  // namespace threads

HANDLE CreateSemaphoreA(SECURITY_ATTRIBUTES*, LONG initial, LONG, const char*) {
  const Lock lock(TheWorld().mutex);
  if (Fails("CreateSemaphoreA")) return nullptr;
  const HANDLE handle = Open(Kind::kSemaphore);
  TheWorld().open[handle]->count = initial;
  return handle;
}

BOOL ReleaseSemaphore(HANDLE semaphore, LONG count, LONG*) {
  const Lock lock(TheWorld().mutex);
  const auto object = Find(semaphore, Kind::kSemaphore);
  if (object == nullptr || Fails("ReleaseSemaphore")) return FALSE;
  object->count += count;
  TheWorld().changed.notify_all();
  return TRUE;
}

HANDLE CreateEventA(SECURITY_ATTRIBUTES*, BOOL, BOOL initial, const char*) {
  const Lock lock(TheWorld().mutex);
  if (Fails("CreateEventA")) return nullptr;
  const HANDLE handle = Open(Kind::kEvent);
  TheWorld().open[handle]->signalled = initial != FALSE;
  return handle;
}

BOOL SetEvent(HANDLE event) {
  const Lock lock(TheWorld().mutex);
  if (event == nullptr) return FALSE;
  const auto object = Find(event, Kind::kEvent);
  if (object == nullptr) return FALSE;
  object->signalled = true;
  TheWorld().changed.notify_all();
  return TRUE;
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL all, DWORD milliseconds) {
  World& world = TheWorld();
  Lock lock(world.mutex);
  std::vector<std::shared_ptr<Object>> waited;
  for (DWORD i = 0; i < count; ++i) {
    const auto found = world.open.find(objects[i]);
    if (found == world.open.end()) {
      ++world.mistakes;
      return WAIT_FAILED;
    }
    waited.push_back(found->second);
  }
  const auto ready = [&] {
    const auto isReady = [](const auto& object) { return IsReady(*object); };
    return all ? std::all_of(waited.begin(), waited.end(), isReady)
               : std::any_of(waited.begin(), waited.end(), isReady);
  };
  if (!WaitUntil(lock, milliseconds, ready)) return WAIT_TIMEOUT;
  for (DWORD i = 0; i < count; ++i) {
    if (!IsReady(*waited[i])) continue;
    if (waited[i]->kind == Kind::kSemaphore) --waited[i]->count;
    if (!all) return WAIT_OBJECT_0 + i;
  }
  return WAIT_OBJECT_0;
}

DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds) {
  return WaitForMultipleObjects(1, &object, FALSE, milliseconds);
}

BOOL CloseHandle(HANDLE handle) {
  std::shared_ptr<Object> object;
  {
    const Lock lock(TheWorld().mutex);
    const auto found = TheWorld().open.find(handle);
    if (found == TheWorld().open.end()) {
      ++TheWorld().mistakes;
      return FALSE;
    }
    object = found->second;
    TheWorld().open.erase(found);
  }
  // Threads and programs are closed when they have ended, or been killed.
  if (object->thread.joinable()) object->thread.join();
  return TRUE;
}

void InitializeCriticalSection(CRITICAL_SECTION* section) {
  section->mutex = new std::mutex;
}
void EnterCriticalSection(CRITICAL_SECTION* section) {
  static_cast<std::mutex*>(section->mutex)->lock();
}
void LeaveCriticalSection(CRITICAL_SECTION* section) {
  static_cast<std::mutex*>(section->mutex)->unlock();
}
void DeleteCriticalSection(CRITICAL_SECTION* section) {
  delete static_cast<std::mutex*>(section->mutex);
}

// Takes no lock with 0: that would order what only the flags may order.
void Sleep(DWORD milliseconds) {
  if (milliseconds > 0 && IsInterface()) {
    const Lock lock(TheWorld().mutex);
    TheWorld().interfaceSleeps.push_back(milliseconds);
  }
  if (milliseconds == 0) {
    std::this_thread::yield();
  } else {
    std::this_thread::sleep_for(milliseconds * threads::kMillisecond);
  }
}

uintptr_t _beginthreadex(void*, unsigned, unsigned (*procedure)(void*), void* argument, unsigned, unsigned*) {
  const Lock lock(TheWorld().mutex);
  if (Fails("_beginthreadex")) return 0;
  const auto object = std::make_shared<Object>();
  object->thread = std::thread([object, procedure, argument] {
    procedure(argument);
    const Lock end(TheWorld().mutex);
    object->signalled = true;
    TheWorld().changed.notify_all();
  });
  return reinterpret_cast<uintptr_t>(Open(Kind::kThread, object));
}

BOOL CreatePipe(HANDLE* reading, HANDLE* writing, SECURITY_ATTRIBUTES* attributes, DWORD) {
  const Lock lock(TheWorld().mutex);
  if (Fails("CreatePipe")) return FALSE;
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
  if (handle == nullptr || Fails("SetHandleInformation")) return FALSE;
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
  if (Fails("CreateProcessA")) return FALSE;
  threads::Start start = {application, commandLine, world.directory, inheritHandles, flags, *startup, {}};
  for (const auto& [handle, object] : world.open) {
    if (inheritHandles && object->inheritable) start.inherited.push_back(handle);
  }
  world.starts.push_back(start);
  std::shared_ptr<Pipe> output;
  if (startup->hStdOutput != nullptr) output = Find(startup->hStdOutput, Kind::kPipeEnd)->pipe;
  const auto process = std::make_shared<Object>();
  process->thread = std::thread([process, output, program = world.program] {
    RunningProgram running(process, output);
    if (program) program(running);
    const Lock end(TheWorld().mutex);
    End(*process, 0);
  });
  information->hProcess = Open(Kind::kProcess, process);
  information->hThread = Open(Kind::kThread);
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
BOOL AssignProcessToJobObject(HANDLE, HANDLE) {
  return TRUE;
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

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM) {
  World& world = TheWorld();
  Lock lock(world.mutex);
  Sent sent = {window, message, wParam};
  world.sent.push_back(&sent);
  world.changed.wait(lock, [&sent] { return sent.done; });
  return 0;
}

void KVT_PumpMessages() {
  if (!IsInterface()) {
    const Lock lock(TheWorld().mutex);
    ++TheWorld().otherPumps;
    return;
  }
  threads::DispatchSent();
  std::function<void()> onPump;
  {
    const Lock lock(TheWorld().mutex);
    onPump = TheWorld().onPump;
  }
  if (onPump) onPump();
  std::this_thread::sleep_for(threads::kMillisecond);
}
