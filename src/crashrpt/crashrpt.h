// crashrpt.dll: turns a crash of the program that installed it into a report on disk, which the user
// may send to the maker. A plain C interface; all text is 8-bit text in the Windows ANSI code page and
// is copied, so nothing needs to outlive a call. docs/crash-reports.md tells what a report holds.
//
// The functions are exported by ordinal only, which crashrpt.def fixes for good:
//   @1 CrashReportInstall   @2 CrashReportGetLastError   @3 CrashReportAddProperty
//   @4 CrashReportAddPicture
//
// Once installed it stays until the process ends: there is no way back, because others may have put
// their handlers on top of ours. The DLL cannot be unloaded then.
#ifndef MOSAICON_CRASHRPT_CRASHRPT_H_
#define MOSAICON_CRASHRPT_CRASHRPT_H_

// C, not C++.
// NOLINTBEGIN(modernize-*)
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// The first thirteen bits of the flags: bit n turns the handler for crash type n on. With none of them
// set all are on.
#define CRASH_CATCH_STRUCTURED_EXCEPTION 0x0001
#define CRASH_CATCH_TERMINATE 0x0002
#define CRASH_CATCH_UNEXPECTED 0x0004
#define CRASH_CATCH_PURE_VIRTUAL 0x0008
#define CRASH_CATCH_NEW_FAULT 0x0010
#define CRASH_CATCH_BUFFER_OVERRUN 0x0020
#define CRASH_CATCH_INVALID_PARAMETER 0x0040
#define CRASH_CATCH_SIGABRT 0x0080
#define CRASH_CATCH_SIGFPE 0x0100
#define CRASH_CATCH_SIGILL 0x0200
#define CRASH_CATCH_SIGINT 0x0400
#define CRASH_CATCH_SIGSEGV 0x0800
#define CRASH_CATCH_SIGTERM 0x1000
#define CRASH_CATCH_ALL 0x1FFF
// Uploads as binary multipart/form-data. That is how every report is uploaded, with or without it.
#define CRASH_UPLOAD_BINARY 0x4000

// Places in the array of priorities; 0 or less: not this way. Mail is not implemented, so that only the
// first one has an effect. With no priority above 0 at all, HTTP is used.
#define CRASH_WAY_HTTP 0
#define CRASH_WAY_SMTP 1
#define CRASH_WAY_SIMPLE_MAPI 2

// How the program ends after a crash: there is a complete report, or there is none (the callback refused
// it, it could not be written, the sender is not there or did not answer in time, or the handling crashed
// itself).
#define CRASH_EXIT_REPORTED 201
#define CRASH_EXIT_UNREPORTED 202

// Asked before a report is made, on a thread of the library; the argument is null. FALSE (0): no report.
// The program has crashed, so it must not wait for anything; it is not waited for forever.
typedef int (*CrashCallback)(void* reserved);

// A null pointer, an empty text or 0 stands for the default, which is told at each field.
typedef struct CrashInstallInfo {
  uint16_t size;                   // sizeof(CrashInstallInfo); anything else is refused
  const char* applicationName;     // the name of the program's file without its extension
  const char* applicationVersion;  // empty in reports
  const char* emailTo;             // field "email" of the upload; empty
  const char* emailSubject;        // field "subject" of the upload; "<name> <version> crash report"
  const char* uploadUrl;           // https; without such a one reports stay on disk
  const char* senderPath;          // the sender program, or its folder; crashsender.exe beside the DLL
  CrashCallback callback;          // none: every crash is reported
  int32_t priorities[5];           // see CRASH_WAY_...; the last two are reserved
  uint32_t flags;                  // see above
  const char* privacyPolicyUrl;    // linked in the sender's window; no link
  const char* debugHelpDll;        // the DLL with MiniDumpWriteDump; that of the system
  uint32_t dumpType;               // a MINIDUMP_TYPE; 0 is MiniDumpNormal
  const char* reportFolder;        // %LOCALAPPDATA%\<application name>\CrashReports
  const char* restartCommandLine;  // no effect: the program is not started again
  const char* languageFile;        // no effect: the sender speaks English
  const char* emailText;           // field "text" of the upload; empty
  const char* smtpProxy;           // no effect, like the three below: mail is not implemented
  const char* senderIcon;          // no effect
  const char* smtpLogin;           // no effect
  const char* smtpPassword;        // no effect, and not copied
  int32_t restartTimeout;          // no effect
  int32_t reportsPerDay;           // no effect: every crash is reported
} CrashInstallInfo;

#ifdef __cplusplus
static_assert(sizeof(CrashInstallInfo) == 184, "the layout is fixed");
#endif

// Installs the handlers for the whole process; signals and the reserve for stack overflows also for
// every thread that starts later. Starts the sender, which waits for a crash or the end of the process.
// Call it early, on the main thread. Reports that the user agreed to send and that could not be delivered
// are tried again meanwhile, in a process without a window.
// Returns 0, or 1 when it did nothing: CrashReportGetLastError then tells why.
int CrashReportInstall(const CrashInstallInfo* info);

// Copies the message of the last failure of the calling process into buffer: at most size - 1 characters
// and the terminator, longer text is cut. Returns the number of characters copied, -1 without a buffer.
// Any thread.
int CrashReportGetLastError(char* buffer, uint32_t size);

// Adds a property to every later report, or replaces the one of this name. Returns 0; 1 when there is
// no name or value, nothing is installed, or the room for all properties (32 KB) is used up. Any thread.
int CrashReportAddProperty(const char* name, const char* value);

// 0 adds a picture of the whole desktop to every later report; no other value is known. Returns 0, or 1
// for another value or when nothing is installed. Any thread.
int CrashReportAddPicture(int what);

#ifdef __cplusplus
}
#endif
// NOLINTEND(modernize-*)

#endif  // MOSAICON_CRASHRPT_CRASHRPT_H_
