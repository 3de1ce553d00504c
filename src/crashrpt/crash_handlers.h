// Catches the thirteen kinds of crash and hands each to ReportCrash. Win32, GCC and its C++ library.
//
// How each kind is caught:
//   structured exception   the process's filter for unhandled exceptions; heap corruption that Windows
//                          finds, for which no filter is asked, by a vectored handler
//   terminate, unexpected, new operator   std::set_..., in the shared C++ library of the whole program
//   pure virtual call      a terminate call that comes from the C++ library's stand-in for such functions
//   buffer overrun         exception 0xC0000409, which stack_guard.cpp raises (Windows' own fast fail
//                          ends a process without asking anybody and cannot be caught)
//   invalid parameter      the handler of Windows' C runtime (ucrtbase.dll), for every module that uses
//                          it, or the exception 0xC0000417. The old msvcrt.dll, which a program may be
//                          linked with instead, has no such handler and ignores such calls
//   signals                signal()
#ifndef MOSAICON_CRASHRPT_CRASH_HANDLERS_H_
#define MOSAICON_CRASHRPT_CRASH_HANDLERS_H_

#include <cstdint>

// Everything that can fail. Returns false when Windows refused something; then it may be tried again.
bool PrepareCrashHandlers();

// For the whole process and the calling thread; flags as in CrashInstallInfo, at least one of the
// thirteen. Once, after PrepareCrashHandlers and StartCrashReporter have succeeded.
void InstallCrashHandlers(uint32_t flags);

// For a thread that has just started: the C runtime keeps some signal handlers for each thread, and
// Windows the stack that is reserved for handling an overflow. Does nothing before the other.
void InstallCrashHandlersOfThread();

#endif  // MOSAICON_CRASHRPT_CRASH_HANDLERS_H_
