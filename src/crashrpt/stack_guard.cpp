// Target crashrpt_hooks: what a program links that wants buffer overruns on its stack reported. It is
// compiled with GCC's stack protector then, and these two take the place of the compiler's own library,
// which would end the process so that nobody can catch it. Needs nothing of crashrpt.dll.
#include <windows.h>

#include <cstdint>

#include "crashrpt/crash_kind.h"

extern "C" {
// The compiler's names. NOLINTBEGIN(bugprone-reserved-identifier)
// The value that must be unharmed when a function returns.
uintptr_t __stack_chk_guard = 0x595E9FBD94FDA766;
[[noreturn]] void __stack_chk_fail();
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

// One that nobody can foresee, before any function of the program runs: the C runtime calls this at
// the very start.
void __cdecl ChooseGuard() {
  LARGE_INTEGER ticks = {};
  QueryPerformanceCounter(&ticks);
  __stack_chk_guard ^= static_cast<uintptr_t>(ticks.QuadPart) * 0x9E3779B97F4A7C15U ^
                       static_cast<uintptr_t>(GetCurrentProcessId()) << 32U;
  // A zero byte stops overruns by text functions.
  __stack_chk_guard &= ~static_cast<uintptr_t>(0xFF);
}
__attribute__((section(".CRT$XCB"), used)) void(__cdecl* const g_chooseGuard)() = ChooseGuard;

}  // namespace

// The stack is not what it was, so that no search for a handler may walk it: the process's filter is
// asked at once.
void __stack_chk_fail() {
  static CONTEXT context;
  static EXCEPTION_RECORD record;
  RtlCaptureContext(&context);
  record.ExceptionCode = kBufferOverrunCode;
  record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
  record.ExceptionAddress = __builtin_return_address(0);
  EXCEPTION_POINTERS pointers = {&record, &context};
  UnhandledExceptionFilter(&pointers);
  for (;;) TerminateProcess(GetCurrentProcess(), kBufferOverrunCode);
}
