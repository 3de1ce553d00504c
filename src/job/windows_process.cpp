#include "job/windows_process.h"

#include <windows.h>

namespace {

constexpr DWORD kMaxVariable = 32767;
constexpr DWORD kMaxPath = 4096;

}  // namespace

std::optional<std::string> WindowsEnvironment::Get(const std::string& name) {
  std::string value(kMaxVariable, '\0');
  SetLastError(ERROR_SUCCESS);
  const DWORD length = GetEnvironmentVariableA(name.c_str(), value.data(), kMaxVariable);
  if (length == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
  value.resize(length < kMaxVariable ? length : 0);
  return value;
}

bool WindowsEnvironment::Set(const std::string& name, const std::string& value) {
  return SetEnvironmentVariableA(name.c_str(), value.c_str()) != FALSE;
}

std::string GetProgramPath() {
  char path[kMaxPath];
  const DWORD length = GetModuleFileNameA(nullptr, path, kMaxPath);
  return length < kMaxPath ? std::string(path, length) : std::string();
}
