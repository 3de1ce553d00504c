// Test DLL: takes the place of crashrpt.dll and writes down what the program wants of it, one line each,
// into the file named by the environment variable CRASHRPT_RECORD. With CRASHRPT_REFUSE set the
// installation fails, with that as its message.
#include <windows.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "crashrpt/crashrpt.h"

namespace {

void Record(const char* format, ...) __attribute__((format(gnu_printf, 1, 2)));
void Record(const char* format, ...) {
  std::FILE* file = std::fopen(std::getenv("CRASHRPT_RECORD"), "ab");
  if (file == nullptr) return;
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(file, format, arguments);
  va_end(arguments);
  std::fputc('\n', file);
  std::fclose(file);
}

bool IsZero(const CrashInstallInfo& info) {
  const CrashInstallInfo zero = {};
  return std::memcmp(&info, &zero, sizeof info) == 0;
}

}  // namespace

int CrashReportInstall(const CrashInstallInfo* info) {
  Record("size %u", static_cast<unsigned>(info->size));
  Record("name %s", info->applicationName);
  Record("version %s", info->applicationVersion);
  Record("to %s", info->emailTo);
  Record("subject %s", info->emailSubject);
  Record("url %s", info->uploadUrl);
  Record("callback %d", info->callback(nullptr));
  const auto* const priorities = info->priorities;
  Record("priorities %d %d %d %d %d", priorities[0], priorities[1], priorities[2], priorities[3],
         priorities[4]);
  Record("flags %X", static_cast<unsigned>(info->flags));
  Record("privacy %s", info->privacyPolicyUrl);
  CrashInstallInfo rest = *info;
  rest.size = 0;
  rest.applicationName = rest.applicationVersion = rest.emailTo = rest.emailSubject = rest.uploadUrl =
      rest.privacyPolicyUrl = nullptr;
  rest.callback = nullptr;
  for (auto& priority : rest.priorities) priority = 0;
  rest.flags = 0;
  Record("rest %s", IsZero(rest) ? "zero" : "not zero");
  return std::getenv("CRASHRPT_REFUSE") != nullptr ? 1 : 0;
}

int CrashReportGetLastError(char* buffer, uint32_t size) {
  Record("error %u", static_cast<unsigned>(size));
  return std::snprintf(buffer, size, "%s", std::getenv("CRASHRPT_REFUSE"));
}

int CrashReportAddProperty(const char* name, const char* value) {
  Record("property %s=%s", name, value);
  return 0;
}

int CrashReportAddPicture(int what) {
  Record("picture %d", what);
  return 0;
}
