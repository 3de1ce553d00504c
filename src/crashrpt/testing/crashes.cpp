#include "crashes.h"

#include <windows.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>

namespace {

volatile int g_sink = 0;

void WriteNowhere() {
  volatile int* volatile nowhere = nullptr;
  *nowhere = 1;
}

class Abstract {
 public:
  Abstract() { CallWhatIsNotThereYet(); }
  virtual ~Abstract() = default;
  __attribute__((noinline)) void CallWhatIsNotThereYet() { NotThereYet(); }
  virtual void NotThereYet() = 0;
};
class Concrete : public Abstract {
 public:
  void NotThereYet() override { g_sink = g_sink + 1; }
};

void CallPureVirtual() {
  const Concrete object;
}

void AskForTooMuch() {
  volatile size_t size = static_cast<size_t>(1) << 62U;
  char* volatile bytes = new char[size];
  bytes[0] = 1;
}

// Overruns an array on its own stack: the caller's frame is damaged as well.
__attribute__((noinline)) void OverrunBuffer(size_t length) {
  char buffer[16];
  char* volatile place = buffer;
  std::memset(place, 'x', length);
  g_sink = buffer[g_sink & 15];
}

// What a function of Windows' C runtime does with an argument that it cannot take.
void PassInvalidParameter() {
  using Function = int(__cdecl*)(char*, size_t, const char*);
  const auto copy = reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ucrtbase.dll"), "strcpy_s")));
  g_sink = copy(nullptr, 0, "x");
}

__attribute__((noinline)) int Recurse(int depth) {
  volatile char frame[1024];
  frame[0] = static_cast<char>(depth);
  if (g_sink == -1) return 0;  // never
  return Recurse(depth + 1) + frame[0];
}

LONG WINAPI EndAtOnce(EXCEPTION_POINTERS*) {
  return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

void CrashBy(int number) {
  switch (number) {
    case 0:
      return WriteNowhere();
    case 1:
      std::terminate();
    case 2:
      std::unexpected();
    case 3:
      return CallPureVirtual();
    case 4:
      return AskForTooMuch();
    case 5:
      return OverrunBuffer(200);
    case 6:
      return PassInvalidParameter();
    case 7:
      std::abort();
    case 8:
      raise(SIGFPE);
      return;
    case 9:
      raise(SIGILL);
      return;
    case 10:
      raise(SIGINT);
      return;
    case 11:
      raise(SIGSEGV);
      return;
    case 12:
      raise(SIGTERM);
      return;
    default:
      return;
  }
}

void OverflowStack() {
  g_sink = Recurse(0);
}

void ThrowToNobody() {
  throw std::runtime_error("nobody");
}

void DivideByZero() {
  volatile int zero = 0;
  g_sink = 1000 / zero;
}

void RaiseOwnException() {
  RaiseException(0xC0000005, 0, 0, nullptr);
}

void CrashHoldingHeap() {
  HeapLock(GetProcessHeap());
  WriteNowhere();
}

void CrashHoldingLoader() {
  using Function = LONG(WINAPI*)(ULONG, ULONG*, ULONG_PTR*);
  const auto lock = reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "LdrLockLoaderLock")));
  ULONG_PTR cookie = 0;
  lock(0, nullptr, &cookie);
  WriteNowhere();
}

void ReportDamagedHeap() {
  SetUnhandledExceptionFilter(EndAtOnce);
  HeapLock(GetProcessHeap());
  RaiseException(0xC0000374, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}
