// Test program: installs the library as its options say, prints its process and thread, and crashes.
//   crashrpt_crasher CRASH [OPTION]...
// CRASH: a crash type, or the name of another way to end (see Crash). Exit codes: 0 it ended well, 3 the
// crash did not come about, 4 the installation failed (the reason is printed).

#include <windows.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "crashrpt/crashrpt.h"
#include "crashrpt/testing/crashes.h"

namespace {

constexpr int kNoCrash = 3;
constexpr int kNotInstalled = 4;

struct Options {
  CrashInstallInfo info = {};
  std::string name, version, folder, url, privacy, email, subject, text, debugHelp, sender;
  bool picture = false;
};

int Refuse(void*) {
  return FALSE;
}
int CrashAgain(void*) {
  CrashBy(0);
  return TRUE;
}
int Agree(void* reserved) {
  return reserved == nullptr ? TRUE : FALSE;
}

const char* OrNull(const std::string& text) {
  return text.empty() ? nullptr : text.c_str();
}

bool IsOption(const std::string& argument, const char* name, std::string& value) {
  const std::string prefix = std::string("--") + name + "=";
  if (argument.rfind(prefix, 0) != 0) return false;
  value = argument.substr(prefix.size());
  return true;
}

bool ReadOption(const std::string& argument, Options& options) {
  std::string value;
  if (argument == "--picture") return options.picture = true;
  if (argument == "--no-local-data") return SetEnvironmentVariableA("LOCALAPPDATA", nullptr) != FALSE;
  if (IsOption(argument, "name", options.name) || IsOption(argument, "version", options.version) ||
      IsOption(argument, "folder", options.folder) || IsOption(argument, "url", options.url) ||
      IsOption(argument, "privacy", options.privacy) || IsOption(argument, "email", options.email) ||
      IsOption(argument, "subject", options.subject) || IsOption(argument, "text", options.text) ||
      IsOption(argument, "debug-help", options.debugHelp) || IsOption(argument, "sender", options.sender)) {
    return true;
  }
  if (IsOption(argument, "flags", value)) options.info.flags = std::strtoul(value.c_str(), nullptr, 16);
  if (IsOption(argument, "dump-type", value))
    options.info.dumpType = std::strtoul(value.c_str(), nullptr, 16);
  if (IsOption(argument, "http", value)) options.info.priorities[CRASH_WAY_HTTP] = std::atoi(value.c_str());
  if (IsOption(argument, "smtp", value)) options.info.priorities[CRASH_WAY_SMTP] = std::atoi(value.c_str());
  if (IsOption(argument, "callback", value)) {
    options.info.callback = value == "refuse" ? Refuse : value == "crash" ? CrashAgain : Agree;
  }
  return !value.empty();
}

bool Install(Options& options) {
  CrashInstallInfo& info = options.info;
  info.size = sizeof info;
  info.applicationName = OrNull(options.name);
  info.applicationVersion = OrNull(options.version);
  info.reportFolder = OrNull(options.folder);
  info.uploadUrl = OrNull(options.url);
  info.privacyPolicyUrl = OrNull(options.privacy);
  info.emailTo = OrNull(options.email);
  info.emailSubject = OrNull(options.subject);
  info.emailText = OrNull(options.text);
  info.debugHelpDll = OrNull(options.debugHelp);
  info.senderPath = OrNull(options.sender);
  const bool installed =
      CrashReportInstall(&info) == 0 && (!options.picture || CrashReportAddPicture(0) == 0);
  if (!installed) {
    char message[512];
    CrashReportGetLastError(message, sizeof message);
    std::puts(message);
  }
  return installed;
}

// One of every byte, and a property that is replaced.
bool AddProperties() {
  std::string allBytes;
  for (int byte = 1; byte < 256; ++byte) allBytes += static_cast<char>(byte);
  return CrashReportAddProperty("image", "first") == 0 && CrashReportAddProperty("a<\"&'>", "") == 0 &&
         CrashReportAddProperty("bytes", allBytes.c_str()) == 0 &&
         CrashReportAddProperty("image", "second") == 0;
}

void TellWhere() {
  std::printf("%lu %lu\n", GetCurrentProcessId(), GetCurrentThreadId());
  std::fflush(stdout);
}

void CrashInThread() {
  std::thread([] {
    TellWhere();
    CrashBy(0);
  }).join();
}

// Both wait for the same moment.
void CrashInTwoThreads() {
  const HANDLE start = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  const auto crash = [start] {
    TellWhere();
    WaitForSingleObject(start, INFINITE);
    CrashBy(0);
  };
  std::thread first(crash);
  std::thread second(crash);
  Sleep(200);
  SetEvent(start);
  first.join();
  second.join();
}

// Waits to be provoked from outside, or to end well.
int WaitFor(DWORD milliseconds) {
  TellWhere();
  Sleep(milliseconds);
  return 0;
}

// For a program that starts and ends well: how long it took.
bool InstallAndTell(Options& options) {
  const auto begin = std::chrono::steady_clock::now();
  if (!Install(options)) return false;
  const auto time = std::chrono::steady_clock::now() - begin;
  std::printf("%lld\n",
              static_cast<long long>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count()));
  return true;
}

int Crash(const std::string& how) {
  if (how == "thread") CrashInThread();
  if (how == "two-threads") CrashInTwoThreads();
  if (how == "wait") return WaitFor(60000);
  TellWhere();
  if (how == "overflow") OverflowStack();
  if (how == "overflow-in-thread") std::thread(OverflowStack).join();
  if (how == "throw") ThrowToNobody();
  if (how == "throw-in-thread") std::thread(ThrowToNobody).join();
  if (how == "divide") DivideByZero();
  if (how == "raise-exception") RaiseOwnException();
  if (how == "holding-heap") CrashHoldingHeap();
  if (how == "holding-loader") CrashHoldingLoader();
  if (how == "damaged-heap") ReportDamagedHeap();
  if (how == "signal-in-thread") std::thread([] { CrashBy(11); }).join();
  if (how.find_first_not_of("0123456789") == std::string::npos) CrashBy(std::atoi(how.c_str()));
  return kNoCrash;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return kNoCrash;
  // Windows' own window about the crash is not wanted where nobody sees it.
  SetErrorMode(SEM_NOGPFAULTERRORBOX | SEM_FAILCRITICALERRORS);
  Options options;
  for (int i = 2; i < argc; ++i) {
    if (!ReadOption(argv[i], options)) return kNoCrash;
  }
  // Short enough for a test, long enough for what the library does in the background.
  if (std::string(argv[1]) == "start") return InstallAndTell(options) ? WaitFor(1000) : kNotInstalled;
  if (!Install(options) || !AddProperties()) return kNotInstalled;
  return Crash(argv[1]);
}
