// From the moment of a crash to the end of the process: notes what happened where the sender reads it,
// starts the sender, waits until the dump is taken and ends the process. Win32.
//
// A thread of its own does this, because the thread that crashed may have no stack left. It allocates
// nothing from the heap itself, waits for nothing without a bound and never returns into the program.
#ifndef MOSAICON_CRASHRPT_CRASH_REPORTER_H_
#define MOSAICON_CRASHRPT_CRASH_REPORTER_H_

#include <windows.h>

#include <string>

#include "crashrpt/crash_kind.h"
#include "crashrpt/hand_over.h"

struct CrashInstallInfo;

// Makes everything ready; once in a process. Returns false with the reason, and has then done nothing.
bool StartCrashReporter(const CrashInstallInfo& info, const std::string& senderProgram,
                        const std::string& programName, std::string& error);

// What the sender will read; null before StartCrashReporter.
HandOver* InstalledHandOver();

// Ends the process. Any thread, once StartCrashReporter has succeeded. Without exception pointers the
// report shows the place of this call. Threads that crash meanwhile wait for the end; when the same
// thread crashes again, or the reporter itself does, the process ends at once.
[[noreturn]] void ReportCrash(CrashKind kind, EXCEPTION_POINTERS* exception);

#endif  // MOSAICON_CRASHRPT_CRASH_REPORTER_H_
