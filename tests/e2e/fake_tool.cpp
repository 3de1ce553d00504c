// Stands in for a tool of the tool folder: notes that it was called, waits, and makes nothing. While it
// waits it talks as the tiling script does: a silent one could not be aborted.
//   FAKE_TOOL_CALLS         the file that gets one line for each call, its fields separated by tabs:
//                           program, current directory, PATH, GDAL_PATH, GDAL_DATA, GDAL_DRIVER_PATH
//                           and the command line
//   FAKE_TOOL_MILLISECONDS  how long it waits, nothing by default
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr DWORD kPauseMilliseconds = 500;

std::string Variable(const char* name) {
  std::string value(32767, '\0');
  value.resize(GetEnvironmentVariableA(name, value.data(), static_cast<DWORD>(value.size())));
  return value;
}

std::string ProgramName() {
  char path[MAX_PATH] = "";
  GetModuleFileNameA(nullptr, path, sizeof path);
  const std::string text = path;
  return text.substr(text.rfind('\\') + 1);
}

std::string CurrentDirectory() {
  char path[MAX_PATH] = "";
  GetCurrentDirectoryA(sizeof path, path);
  return path;
}

}  // namespace

int main() {
  FILE* calls = std::fopen(Variable("FAKE_TOOL_CALLS").c_str(), "ab");
  if (calls == nullptr) return 99;
  std::string line = ProgramName() + '\t' + CurrentDirectory();
  for (const char* name : {"PATH", "GDAL_PATH", "GDAL_DATA", "GDAL_DRIVER_PATH"}) {
    line += '\t' + Variable(name);
  }
  line += '\t' + std::string(GetCommandLineA()) + '\n';
  std::fwrite(line.data(), 1, line.size(), calls);
  std::fclose(calls);
  const ULONGLONG end =
      GetTickCount64() + static_cast<ULONGLONG>(std::atoi(Variable("FAKE_TOOL_MILLISECONDS").c_str()));
  while (GetTickCount64() < end) {
    std::puts("Progress 0.00 done");
    std::fflush(stdout);
    Sleep(kPauseMilliseconds);
  }
  return 0;
}
