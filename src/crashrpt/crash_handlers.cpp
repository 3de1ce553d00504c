#include "crashrpt/crash_handlers.h"

#include <windows.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>

#include "crashrpt/crash_reporter.h"
#include "crashrpt/unexpected_handler.h"

// In the C++ library: what the compiler puts in the place of functions that are not there. Imported as
// data, because the address of an import stub would be ours.
extern "C" __declspec(dllimport) void __cxa_pure_virtual();
extern "C" __declspec(dllimport) void __cxa_deleted_virtual();

namespace {

constexpr ULONG kStackForHandling = 64 * 1024;
constexpr ULONG kMaxFrames = 32;
// GCC's C++ library raises "GCC" exceptions to look for a handler; when nobody takes one it goes on
// by itself, which ends in std::terminate.
constexpr DWORD kGccException = 0x20474343;
constexpr DWORD kGccExceptionMask = 0x20FFFFFF;

uint32_t g_flags = 0;
DWORD g_lastException = TLS_OUT_OF_INDEXES;  // slot with the thread's last EXCEPTION_POINTERS*

bool IsOn(CrashKind kind) {
  return (g_flags & CrashFlag(kind)) != 0;
}

bool IsSearchForHandler(const EXCEPTION_RECORD& record) {
  return (record.ExceptionCode & kGccExceptionMask) == kGccException &&
         (record.ExceptionFlags & EXCEPTION_NONCONTINUABLE) == 0;
}

LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS* exception) {
  if (IsSearchForHandler(*exception->ExceptionRecord)) return EXCEPTION_CONTINUE_EXECUTION;
  const CrashKind kind = KindOfException(exception->ExceptionRecord->ExceptionCode);
  if (!IsOn(kind)) return EXCEPTION_CONTINUE_SEARCH;
  ReportCrash(kind, exception);
}

LONG WINAPI OnAnyException(EXCEPTION_POINTERS* exception) {
  TlsSetValue(g_lastException, exception);
  return EXCEPTION_CONTINUE_SEARCH;
}

bool IsIn(DWORD64 address, void (*function)()) {
  DWORD64 base = 0;
  const RUNTIME_FUNCTION* entry = RtlLookupFunctionEntry(address, &base, nullptr);
  return entry != nullptr && base + entry->BeginAddress == reinterpret_cast<DWORD64>(function);
}

bool IsCalledByMissingFunction() {
  void* frames[kMaxFrames];
  const USHORT count = CaptureStackBackTrace(0, kMaxFrames, frames, nullptr);
  for (USHORT i = 0; i < count; ++i) {
    // The instruction of the call: behind it there may be another function already.
    const DWORD64 call = reinterpret_cast<DWORD64>(frames[i]) - 1;
    if (IsIn(call, __cxa_pure_virtual) || IsIn(call, __cxa_deleted_virtual)) return true;
  }
  return false;
}

void OnTerminate() {
  if (IsOn(CrashKind::kPureVirtual) && IsCalledByMissingFunction()) {
    ReportCrash(CrashKind::kPureVirtual, nullptr);
  }
  if (IsOn(CrashKind::kTerminate)) ReportCrash(CrashKind::kTerminate, nullptr);
  std::abort();
}

void OnUnexpected() {
  ReportCrash(CrashKind::kUnexpected, nullptr);
}

void OnNewFault() {
  ReportCrash(CrashKind::kNewFault, nullptr);
}

void OnInvalidParameter(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, uintptr_t) {
  ReportCrash(CrashKind::kInvalidParameter, nullptr);
}

CrashKind KindOfSignal(int signal) {
  switch (signal) {
    case SIGFPE:
      return CrashKind::kSigFpe;
    case SIGILL:
      return CrashKind::kSigIll;
    case SIGINT:
      return CrashKind::kSigInt;
    case SIGSEGV:
      return CrashKind::kSigSegv;
    case SIGTERM:
      return CrashKind::kSigTerm;
    default:
      return CrashKind::kSigAbrt;
  }
}

// The start-up code in the program itself turns exceptions of the main thread into signals; the C
// runtime, which raise() is in, is a DLL.
bool IsInProgram(const void* address) {
  HMODULE module = nullptr;
  return GetModuleHandleExA(
             GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
             static_cast<LPCSTR>(address), &module) &&
         module == GetModuleHandleA(nullptr);
}

void OnSignal(int signal) {
  const CrashKind kind = KindOfSignal(signal);
  if (!IsInProgram(__builtin_return_address(0))) ReportCrash(kind, nullptr);
  auto* const exception = static_cast<EXCEPTION_POINTERS*>(TlsGetValue(g_lastException));
  if (exception == nullptr) ReportCrash(kind, nullptr);
  const CrashKind kindOfException = KindOfException(exception->ExceptionRecord->ExceptionCode);
  ReportCrash(IsOn(kindOfException) ? kindOfException : kind, exception);
}

void HandleSignal(int number) {
  if (IsOn(KindOfSignal(number))) signal(number, OnSignal);
}

}  // namespace

bool InstallCrashHandlers(uint32_t flags) {
  g_lastException = TlsAlloc();
  if (g_lastException == TLS_OUT_OF_INDEXES) return false;
  if (AddVectoredExceptionHandler(0, OnAnyException) == nullptr) return false;
  g_flags = flags;
  if (IsOn(CrashKind::kStructuredException) || IsOn(CrashKind::kBufferOverrun) ||
      IsOn(CrashKind::kInvalidParameter)) {
    SetUnhandledExceptionFilter(OnUnhandledException);
  }
  if (IsOn(CrashKind::kTerminate) || IsOn(CrashKind::kPureVirtual)) std::set_terminate(OnTerminate);
  if (IsOn(CrashKind::kUnexpected)) SetUnexpectedHandler(OnUnexpected);
  if (IsOn(CrashKind::kNewFault)) std::set_new_handler(OnNewFault);
  if (IsOn(CrashKind::kInvalidParameter)) _set_invalid_parameter_handler(OnInvalidParameter);
  for (const int number : {SIGABRT, SIGINT, SIGTERM}) HandleSignal(number);
  InstallCrashHandlersOfThread();
  return true;
}

void InstallCrashHandlersOfThread() {
  if (g_flags == 0) return;
  ULONG size = kStackForHandling;
  SetThreadStackGuarantee(&size);
  for (const int number : {SIGFPE, SIGILL, SIGSEGV}) HandleSignal(number);
}
