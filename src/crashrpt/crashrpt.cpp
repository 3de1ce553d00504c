// The functions of the DLL.
#include "crashrpt/crashrpt.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <mutex>
#include <string>

#include "crashrpt/crash_handlers.h"
#include "crashrpt/crash_reporter.h"
#include "files/system_files.h"

namespace {

constexpr char kSenderName[] = "crashsender.exe";

std::mutex g_lock;  // for all below, and for the writers of properties
char g_lastError[1024] = "";

int Fail(const std::string& message) {
  const size_t length = std::min(message.size(), sizeof g_lastError - 1);
  std::memcpy(g_lastError, message.c_str(), length);
  g_lastError[length] = '\0';
  return 1;
}

std::string PathOfModule(HMODULE module) {
  char path[MAX_PATH] = "";
  const DWORD length = GetModuleFileNameA(module, path, sizeof path);
  return length < sizeof path ? std::string(path, length) : std::string();
}

// Null for a DLL that cannot be unloaded any more; that is what it is for.
HMODULE PinThisModule() {
  HMODULE module = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<LPCSTR>(&PinThisModule), &module);
  return module;
}

std::string FolderOf(const std::string& path) {
  return path.substr(0, path.rfind('\\') + 1);
}

std::string NameOf(const std::string& path) {
  const std::string name = path.substr(path.rfind('\\') + 1);
  return name.substr(0, name.rfind('.'));
}

// The full path of the sender, or nothing when there is none.
std::string FindSender(const char* given, HMODULE thisModule) {
  std::string path =
      given == nullptr || *given == '\0' ? FolderOf(PathOfModule(thisModule)) + kSenderName : given;
  char full[MAX_PATH] = "";
  const DWORD length = GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
  if (length == 0 || length >= sizeof full) return "";
  path = full;
  SystemFiles files;
  if (files.IsFolder(path)) {
    if (path.back() != '\\') path += '\\';
    path += kSenderName;
  }
  return files.Exists(path) ? path : "";
}

int Install(const CrashInstallInfo* info) {
  if (info == nullptr) return Fail("There is no install record.");
  if (info->size != sizeof *info) {
    return Fail("The install record has the size " + std::to_string(info->size) + " instead of " +
                std::to_string(sizeof *info) + ".");
  }
  if (InstalledHandOver() != nullptr) return Fail("Crash reporting is installed already.");
  const HMODULE thisModule = PinThisModule();
  const std::string sender = FindSender(info->senderPath, thisModule);
  if (sender.empty()) return Fail("The program that sends reports, crashsender.exe, is missing.");
  if (!PrepareCrashHandlers()) {
    return Fail("The handlers could not be prepared, error " + std::to_string(GetLastError()) + ".");
  }
  std::string error;
  if (!StartCrashReporter(*info, sender, NameOf(PathOfModule(nullptr)), error)) return Fail(error);
  const uint32_t chosen = info->flags & CRASH_CATCH_ALL;
  InstallCrashHandlers(chosen != 0 ? chosen : CRASH_CATCH_ALL);
  return 0;
}

// Nothing may be thrown into a C program.
template <typename Function>
int Guarded(Function function) {
  try {
    const std::lock_guard<std::mutex> lock(g_lock);
    return function();
  } catch (const std::exception& exception) {
    return Fail(exception.what());
  }
}

}  // namespace

int CrashReportInstall(const CrashInstallInfo* info) {
  return Guarded([info] { return Install(info); });
}

int CrashReportGetLastError(char* buffer, uint32_t size) {
  if (buffer == nullptr || size == 0) return -1;
  const std::lock_guard<std::mutex> lock(g_lock);
  const size_t length = std::min<size_t>(std::strlen(g_lastError), size - 1);
  std::memcpy(buffer, g_lastError, length);
  buffer[length] = '\0';
  return static_cast<int>(length);
}

int CrashReportAddProperty(const char* name, const char* value) {
  return Guarded([name, value] {
    if (InstalledHandOver() == nullptr) return Fail("Crash reporting is not installed.");
    if (name == nullptr || *name == '\0' || value == nullptr) {
      return Fail("A property needs a name and a value.");
    }
    if (!SetProperty(InstalledHandOver()->properties, name, value)) {
      return Fail(std::string("There is no room for the property ") + name + ".");
    }
    return 0;
  });
}

int CrashReportAddPicture(int what) {
  return Guarded([what] {
    if (InstalledHandOver() == nullptr) return Fail("Crash reporting is not installed.");
    if (what != 0) return Fail("There is no such picture: " + std::to_string(what) + ".");
    InstalledHandOver()->withPicture = 1;
    return 0;
  });
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason == DLL_THREAD_ATTACH) InstallCrashHandlersOfThread();
  return TRUE;
}
