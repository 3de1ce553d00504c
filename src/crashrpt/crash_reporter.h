// Has the sender ready while the program is well. From the moment of a crash to the end of the process:
// notes what happened where the sender reads it, wakes the sender, waits until the report is taken and
// ends the process. Win32.
//
// A thread of its own does the last three, because the thread that crashed may have no stack left, and may
// hold any lock. So neither of them uses the heap or the loader then; all that is needed was looked up at
// the installation. Nothing is waited for without a bound, and nothing returns into the program.
#ifndef MOSAICON_CRASHRPT_CRASH_REPORTER_H_
#define MOSAICON_CRASHRPT_CRASH_REPORTER_H_

#include <windows.h>

#include <string>

#include "crashrpt/crash_kind.h"
#include "crashrpt/hand_over.h"

struct CrashInstallInfo;

// Makes everything ready; once in a process. Returns false with the reason, and has then done nothing. A
// sender that does not start is no such reason: then a crash only ends the program.
bool StartCrashReporter(const CrashInstallInfo& info, const std::string& senderProgram,
                        const std::string& programName, std::string& error);

// What the sender will read; null before StartCrashReporter.
HandOver* InstalledHandOver();

// Ends the process. Any thread, once StartCrashReporter has succeeded. Without exception pointers the
// report shows the place of this call. Threads that crash meanwhile wait for the end; when the same
// thread crashes again, or the reporter itself does, the process ends at once.
[[noreturn]] void ReportCrash(CrashKind kind, EXCEPTION_POINTERS* exception);

#endif  // MOSAICON_CRASHRPT_CRASH_REPORTER_H_
