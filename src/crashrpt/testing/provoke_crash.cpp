#include "crashrpt/testing/provoke_crash.h"

#include <tlhelp32.h>

#include <csignal>
#include <cstring>
#include <memory>

#include "crashrpt/crash_kind.h"
#include "handles/unique_handle.h"

namespace {

constexpr char kCppRuntime[] = "libstdc++-6.dll";
constexpr char kUniversalRuntime[] = "ucrtbase.dll";
#ifdef _UCRT
constexpr char kCRuntime[] = "ucrtbase.dll";
#else
constexpr char kCRuntime[] = "msvcrt.dll";
#endif

// Where a thread begins, and its argument.
struct Beginning {
  const char* module;
  const char* function;
  ULONG_PTR argument;
};
constexpr Beginning kBeginnings[kCrashKinds] = {
    {kCRuntime, "strlen", 0},  // reads at address 0
    {kCppRuntime, "_ZSt9terminatev", 0},
    {kCppRuntime, "_ZSt10unexpectedv", 0},
    {kCppRuntime, "__cxa_pure_virtual", 0},
    {kCppRuntime, "_Znwy", static_cast<ULONG_PTR>(1) << 62U},  // operator new with this size
    {"ntdll.dll", "RtlRaiseStatus", kBufferOverrunCode},
    {kUniversalRuntime, "_invalid_parameter_noinfo", 0},
    {kCRuntime, "abort", 0},
    {kCRuntime, "raise", SIGFPE},
    {kCRuntime, "raise", SIGILL},
    {kCRuntime, "raise", SIGINT},
    {kCRuntime, "raise", SIGSEGV},
    {kCRuntime, "raise", SIGTERM}};

struct LibraryFreer {
  void operator()(HMODULE module) const { FreeLibrary(module); }
};
using Library = std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryFreer>;

// The entry of the process's module; with szModule empty when there is none.
MODULEENTRY32 FindModule(DWORD processId, const char* name) {
  MODULEENTRY32 entry = {};
  entry.dwSize = sizeof entry;
  const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, processId));
  for (BOOL more = Module32First(snapshot.get(), &entry); more; more = Module32Next(snapshot.get(), &entry)) {
    if (_stricmp(entry.szModule, name) == 0) return entry;
  }
  return {};
}

// Address of the function in the other process: as far into the module as it is here.
LPTHREAD_START_ROUTINE AddressThere(DWORD processId, const Beginning& beginning) {
  const MODULEENTRY32 there = FindModule(processId, beginning.module);
  if (there.szModule[0] == '\0') return nullptr;
  const Library here(LoadLibraryA(there.szExePath));
  if (here == nullptr) return nullptr;
  const auto address = reinterpret_cast<uintptr_t>(GetProcAddress(here.get(), beginning.function));
  if (address == 0) return nullptr;
  const uintptr_t distance = address - reinterpret_cast<uintptr_t>(here.get());
  return reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<uintptr_t>(there.modBaseAddr) + distance);
}

}  // namespace

ProvokedCrash ProvokeCrash(HANDLE process, int kind) {
  ProvokedCrash result;
  if (kind < 0 || kind >= static_cast<int>(kCrashKinds)) return {0, "There is no such kind of crash."};
  const Beginning& beginning = kBeginnings[kind];
  const LPTHREAD_START_ROUTINE start = AddressThere(GetProcessId(process), beginning);
  if (start == nullptr) {
    return {0, std::string("The process has no ") + beginning.function + " in " + beginning.module + "."};
  }
  const UniqueHandle thread(CreateRemoteThread(
      process, nullptr, 0, start, reinterpret_cast<void*>(beginning.argument), 0, &result.threadId));
  if (thread == nullptr) result = {0, "No thread could be started, error " + std::to_string(GetLastError())};
  return result;
}
