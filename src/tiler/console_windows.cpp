#include <fcntl.h>
#include <io.h>
#include <windows.h>
// Behind windows.h.
#include <shellapi.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "files/wide_text.h"
#include "handles/dll_folders.h"
#include "tiler/console.h"

namespace tiler {

namespace {

constexpr int kOutput = 1;
constexpr int kError = 2;

void (*g_stop)() = nullptr;

// Called in a thread of its own. Of a console that is closed the system ends the program when this returns,
// and after some seconds in any case.
BOOL WINAPI HandleEvent(DWORD event) {
  constexpr DWORD kUntilTheEnd = 10000;
  g_stop();
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kUntilTheEnd);
  return TRUE;
}

struct LocalMemory {
  void operator()(wchar_t** memory) const { LocalFree(memory); }
};

}  // namespace

std::vector<std::string> Arguments(int /*argc*/, char** /*argv*/) {
  // Those that main() gets have lost what the code page lacks.
  int count = 0;
  const std::unique_ptr<wchar_t*, LocalMemory> words(CommandLineToArgvW(GetCommandLineW(), &count));
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(Utf8FromWide(words.get()[i]));
  return arguments;
}

std::filesystem::path PathFromEnvironment(const char* name) {
  const wchar_t* value = _wgetenv(WideFromUtf8(name).c_str());
  return value == nullptr ? L"" : value;
}

void OnStop(void (*stop)()) {
  g_stop = stop;
  SetConsoleCtrlHandler(HandleEvent, TRUE);
}

void LoadNothingFromElsewhere() {
  LoadDllsFromOwnAndSystemFolderOnly();
}

void AskNobody() {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
}

StandardOutput::StandardOutput(const std::filesystem::path& log) : m_descriptor(_dup(kOutput)) {
  if (m_descriptor >= 0) _setmode(m_descriptor, _O_BINARY);
  int file = _wopen(log.c_str(), _O_WRONLY | _O_APPEND | _O_BINARY | _O_NOINHERIT);
  if (file < 0) file = _wopen(L"NUL", _O_WRONLY | _O_NOINHERIT);
  _dup2(file, kOutput);
  _dup2(file, kError);
  _close(file);
}

bool StandardOutput::Write(const std::string& text) const {
  const auto size = static_cast<unsigned>(text.size());
  return m_descriptor >= 0 && _write(m_descriptor, text.data(), size) == static_cast<int>(size);
}

std::string LocalTime() {
  SYSTEMTIME now = {};
  GetLocalTime(&now);
  char text[32] = "";
  std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u", now.wYear, now.wMonth, now.wDay,
                now.wHour, now.wMinute, now.wSecond);
  return text;
}

}  // namespace tiler
