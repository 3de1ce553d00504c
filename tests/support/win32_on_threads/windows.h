// The few system calls of the tool runner, made of standard threads, so that its queue and its items run
// natively under the sanitizers, unchanged. Test equipment: the folder stands before all others in the
// search path of one test program. What a test sets and sees is in win32_on_threads.h.
#ifndef MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_WINDOWS_H_
#define MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_WINDOWS_H_

#include <cstddef>
#include <cstdint>

#define __stdcall
#define TRUE 1
#define FALSE 0
#define INFINITE 0xFFFFFFFFU
#define WAIT_OBJECT_0 0U
#define WAIT_TIMEOUT 258U
#define WAIT_FAILED 0xFFFFFFFFU
#define HANDLE_FLAG_INHERIT 1U
#define STARTF_USESTDHANDLES 0x100U
#define CREATE_SUSPENDED 0x4U
#define CREATE_NO_WINDOW 0x8000000U
#define JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE 0x2000U

using BOOL = int;
using UINT = unsigned;
using LONG = int32_t;
using DWORD = uint32_t;
using WPARAM = uintptr_t;
using LPARAM = intptr_t;
using LRESULT = intptr_t;
using HANDLE = void*;
#define INVALID_HANDLE_VALUE reinterpret_cast<HANDLE>(intptr_t{-1})
using HWND = struct ThreadWindow*;

struct CRITICAL_SECTION {
  void* mutex;
};
struct SECURITY_ATTRIBUTES {
  DWORD nLength;
  void* lpSecurityDescriptor;
  BOOL bInheritHandle;
};
struct STARTUPINFOA {
  DWORD cb;
  DWORD dwFlags;
  HANDLE hStdInput;
  HANDLE hStdOutput;
  HANDLE hStdError;
};
struct PROCESS_INFORMATION {
  HANDLE hProcess;
  HANDLE hThread;
};
struct JOBOBJECT_EXTENDED_LIMIT_INFORMATION {
  struct {
    DWORD LimitFlags;
  } BasicLimitInformation;
};
enum JOBOBJECTINFOCLASS { JobObjectExtendedLimitInformation = 9 };

HANDLE CreateSemaphoreA(SECURITY_ATTRIBUTES* attributes, LONG initial, LONG maximum, const char* name);
BOOL ReleaseSemaphore(HANDLE semaphore, LONG count, LONG* previous);
HANDLE CreateEventA(SECURITY_ATTRIBUTES* attributes, BOOL manualReset, BOOL initial, const char* name);
BOOL SetEvent(HANDLE event);
DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds);
DWORD WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL all, DWORD milliseconds);
BOOL CloseHandle(HANDLE object);
void InitializeCriticalSection(CRITICAL_SECTION* section);
void EnterCriticalSection(CRITICAL_SECTION* section);
void LeaveCriticalSection(CRITICAL_SECTION* section);
void DeleteCriticalSection(CRITICAL_SECTION* section);
void Sleep(DWORD milliseconds);

BOOL CreatePipe(HANDLE* reading, HANDLE* writing, SECURITY_ATTRIBUTES* attributes, DWORD size);
BOOL SetHandleInformation(HANDLE object, DWORD mask, DWORD flags);
BOOL PeekNamedPipe(HANDLE pipe, void* buffer, DWORD size, DWORD* read, DWORD* available, DWORD* left);
BOOL ReadFile(HANDLE pipe, void* buffer, DWORD size, DWORD* read, void* overlapped);

BOOL CreateProcessA(const char* application, char* commandLine, SECURITY_ATTRIBUTES* process,
                    SECURITY_ATTRIBUTES* thread, BOOL inheritHandles, DWORD flags, void* environment,
                    const char* directory, STARTUPINFOA* startup, PROCESS_INFORMATION* information);
BOOL TerminateProcess(HANDLE process, UINT exitCode);
BOOL GetExitCodeProcess(HANDLE process, DWORD* exitCode);
HANDLE CreateJobObjectA(SECURITY_ATTRIBUTES* attributes, const char* name);
BOOL SetInformationJobObject(HANDLE job, JOBOBJECTINFOCLASS what, void* information, DWORD size);
BOOL AssignProcessToJobObject(HANDLE job, HANDLE process);
DWORD ResumeThread(HANDLE thread);
DWORD GetCurrentDirectoryA(DWORD size, char* buffer);
BOOL SetCurrentDirectoryA(const char* directory);

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

#endif  // MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_WINDOWS_H_
