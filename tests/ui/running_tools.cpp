#include <windows.h>

// After windows.h.
#include <tlhelp32.h>

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "ui/mosaicon_fixture.h"

namespace {

constexpr char kHostProcesses[] = "Z:\\proc";
constexpr const char* kToolPrograms[] = {"mosaicon-tiler.exe", "python.exe", "gdal_translate.exe",
                                         "gdalwarp.exe"};
// Parts of the command lines of what a Linux host runs for python.exe.
constexpr const char* kHostTools[] = {"python_host.py", "gdal2tiles.py", "spawn_main"};

// Under Wine those of this prefix only.
void AppendWindowsTools(std::vector<std::string>& found) {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32 entry = {};
  entry.dwSize = sizeof entry;
  for (BOOL more = Process32First(snapshot, &entry); more; more = Process32Next(snapshot, &entry)) {
    for (const char* name : kToolPrograms) {
      if (lstrcmpiA(entry.szExeFile, name) == 0) found.emplace_back(name);
    }
  }
  CloseHandle(snapshot);
}

bool IsHostTool(const std::string& commandLine) {
  for (const char* part : kHostTools) {
    if (commandLine.find(part) != std::string::npos) return true;
  }
  return false;
}

// Those that carry the mark of this test program in their environment.
void AppendHostTools(std::vector<std::string>& found) {
  char run[64] = "";
  GetEnvironmentVariableA("MOSAICON_UI_RUN", run, sizeof run);
  const std::string mark = std::string("MOSAICON_UI_RUN=") + run;
  std::error_code gone;
  for (const auto& entry : std::filesystem::directory_iterator(kHostProcesses, gone)) {
    const std::string name = entry.path().filename().string();
    if (std::isdigit(static_cast<unsigned char>(name[0])) == 0) continue;
    const std::string folder = std::string(kHostProcesses) + "\\" + name;
    const std::string commandLine = ReadWhileThere(folder + "\\cmdline");
    if (!IsHostTool(commandLine) || ReadWhileThere(folder + "\\environ").find(mark) == std::string::npos)
      continue;
    found.push_back(commandLine.substr(0, commandLine.find_last_not_of('\0') + 1));
  }
}

}  // namespace

// A stream would throw when reading fails half-way.
std::string ReadWhileThere(const std::string& path) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  std::string bytes;
  char block[4096];
  size_t count = 0;
  while (file != nullptr && (count = std::fread(block, 1, sizeof block, file.get())) > 0) {
    bytes.append(block, count);
  }
  return bytes;
}

std::vector<std::string> RunningTools() {
  std::vector<std::string> found;
  AppendWindowsTools(found);
  AppendHostTools(found);
  return found;
}
