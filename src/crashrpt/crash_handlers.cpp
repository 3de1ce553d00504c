#include "crashrpt/crash_handlers.h"

#include <windows.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>

#include "crashrpt/crash_reporter.h"
#include "crashrpt/stack_reserve.h"
#include "crashrpt/unexpected_handler.h"

// In the C++ library: what the compiler puts in the place of functions that are not there. Imported as
// data, because the address of an import stub would be ours. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" __declspec(dllimport) void __cxa_pure_virtual();
extern "C" __declspec(dllimport) void __cxa_deleted_virtual();
// Likewise, of the C runtime.
extern "C" int (*__imp_raise)(int);
// NOLINTEND(bugprone-reserved-identifier)

namespace {

constexpr ULONG kMaxFrames = 32;
// GCC's C++ library raises "GCC" exceptions to look for a handler; when nobody takes one it goes on
// by itself, which ends in std::terminate.
constexpr DWORD kGccException = 0x20474343;
constexpr DWORD kGccExceptionMask = 0x20FFFFFF;

uint32_t g_flags = 0;
// Slots with the last exception of each thread.
DWORD g_lastRecord = TLS_OUT_OF_INDEXES;
DWORD g_lastContext = TLS_OUT_OF_INDEXES;
void* g_vectoredHandler = nullptr;

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

// The two pointers stay valid until the exception is dealt with; what points to them does not.
LONG WINAPI OnAnyException(EXCEPTION_POINTERS* exception) {
  // Windows catches this one itself and ends the process.
  if (exception->ExceptionRecord->ExceptionCode == kHeapCorruptionCode &&
      IsOn(CrashKind::kStructuredException)) {
    ReportCrash(CrashKind::kStructuredException, exception);
  }
  TlsSetValue(g_lastRecord, exception->ExceptionRecord);
  TlsSetValue(g_lastContext, exception->ContextRecord);
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

// The beginning of the module that an address lies in, found without the lock of the loader.
const void* ModuleAt(const void* address) {
  MEMORY_BASIC_INFORMATION memory = {};
  VirtualQuery(address, &memory, sizeof memory);
  return memory.AllocationBase;
}

// Signals come from raise(), which is in the DLL of the C runtime. But exceptions become signals as well:
// by the C runtime, which tells, in threads that it started; and by the start-up code of the program and
// the thread library, which does not. Then this is the exception; null members otherwise.
EXCEPTION_POINTERS ExceptionOfSignal(const void* caller) {
  if (_pxcptinfoptrs != nullptr) return *static_cast<EXCEPTION_POINTERS*>(_pxcptinfoptrs);
  if (ModuleAt(caller) == ModuleAt(reinterpret_cast<const void*>(__imp_raise))) return {};
  return {static_cast<EXCEPTION_RECORD*>(TlsGetValue(g_lastRecord)),
          static_cast<CONTEXT*>(TlsGetValue(g_lastContext))};
}

void OnSignal(int signal) {
  const CrashKind kind = KindOfSignal(signal);
  EXCEPTION_POINTERS exception = ExceptionOfSignal(__builtin_return_address(0));
  if (exception.ExceptionRecord == nullptr) ReportCrash(kind, nullptr);
  const CrashKind kindOfException = KindOfException(exception.ExceptionRecord->ExceptionCode);
  ReportCrash(IsOn(kindOfException) ? kindOfException : kind, &exception);
}

void HandleInvalidParameters() {
  using Setter = decltype(&_set_invalid_parameter_handler);
  // Not the runtime that this DLL was linked with: that may be msvcrt.dll, which has no such handler.
  const HMODULE runtime = LoadLibraryExA("ucrtbase.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (runtime == nullptr) return;
  const auto set = reinterpret_cast<Setter>(
      reinterpret_cast<void*>(GetProcAddress(runtime, "_set_invalid_parameter_handler")));
  if (set != nullptr) set(OnInvalidParameter);
}

void HandleSignal(int number) {
  if (IsOn(KindOfSignal(number))) signal(number, OnSignal);
}

}  // namespace

bool PrepareCrashHandlers() {
  if (g_lastRecord == TLS_OUT_OF_INDEXES) g_lastRecord = TlsAlloc();
  if (g_lastContext == TLS_OUT_OF_INDEXES) g_lastContext = TlsAlloc();
  if (g_lastRecord == TLS_OUT_OF_INDEXES || g_lastContext == TLS_OUT_OF_INDEXES) return false;
  if (g_vectoredHandler == nullptr) g_vectoredHandler = AddVectoredExceptionHandler(0, OnAnyException);
  return g_vectoredHandler != nullptr;
}

void InstallCrashHandlers(uint32_t flags) {
  g_flags = flags;
  if (IsOn(CrashKind::kStructuredException) || IsOn(CrashKind::kBufferOverrun) ||
      IsOn(CrashKind::kInvalidParameter)) {
    SetUnhandledExceptionFilter(OnUnhandledException);
  }
  if (IsOn(CrashKind::kTerminate) || IsOn(CrashKind::kPureVirtual)) std::set_terminate(OnTerminate);
  if (IsOn(CrashKind::kUnexpected)) SetUnexpectedHandler(OnUnexpected);
  if (IsOn(CrashKind::kNewFault)) std::set_new_handler(OnNewFault);
  if (IsOn(CrashKind::kInvalidParameter)) HandleInvalidParameters();
  for (const int number : {SIGABRT, SIGINT, SIGTERM}) HandleSignal(number);
  InstallCrashHandlersOfThread();
}

void InstallCrashHandlersOfThread() {
  if (g_flags == 0) return;
  ReserveStackForCrash();
  for (const int number : {SIGFPE, SIGILL, SIGSEGV}) HandleSignal(number);
}
