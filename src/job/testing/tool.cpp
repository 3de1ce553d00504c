// A child process for the tests of the tool runner: does what its arguments say, in order.
//   say:TEXT        writes TEXT, with "_" for blanks, to standard output, at once
//   fail:TEXT       the same to standard error
//   sleep:MS        waits
//   await:FILE      waits until FILE is there
//   touch:FILE      creates FILE
//   write:FILE:TEXT creates FILE with TEXT, with "_" for blanks
//   args:FILE       writes its raw command line and its current directory to FILE, a line each
//   env:NAME:FILE   writes an environment variable to FILE
//   child:MS        starts itself with sleep:MS and goes on
//   exit:CODE       ends
// In the end it talks as the tiling script does, for as many milliseconds as TEST_TOOL_TALKS says, for those
// who cannot choose its arguments.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

std::string Unescape(std::string text) {
  for (char& c : text) c = c == '_' ? ' ' : c;
  return text;
}

void WriteText(const std::string& path, const std::string& text) {
  FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) std::exit(99);
  std::fputs(text.c_str(), file);
  std::fclose(file);
}

void WriteHandle(DWORD which, const std::string& text) {
  DWORD written = 0;
  WriteFile(GetStdHandle(which), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

void Await(const std::string& path) {
  while (GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES) Sleep(10);
}

void StartChild(const std::string& milliseconds) {
  char program[MAX_PATH];
  GetModuleFileNameA(nullptr, program, sizeof program);
  std::string commandLine = "child sleep:" + milliseconds;
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  if (!CreateProcessA(program, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &process)) {
    std::exit(98);
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

void WriteDescription(const std::string& path) {
  char directory[MAX_PATH];
  GetCurrentDirectoryA(sizeof directory, directory);
  WriteText(path, std::string(GetCommandLineA()) + "\n" + directory + "\n");
}

// The first colon may be that of a drive.
void WriteLine(const std::string& pathAndText) {
  const size_t colon = pathAndText.rfind(':');
  WriteText(pathAndText.substr(0, colon), Unescape(pathAndText.substr(colon + 1)) + "\n");
}

void WriteVariable(const std::string& nameAndPath) {
  const size_t colon = nameAndPath.find(':');
  char value[4096] = "";
  GetEnvironmentVariableA(nameAndPath.substr(0, colon).c_str(), value, sizeof value);
  WriteText(nameAndPath.substr(colon + 1), value);
}

void Do(const std::string& verb, const std::string& value) {
  if (verb == "say") WriteHandle(STD_OUTPUT_HANDLE, Unescape(value));
  if (verb == "fail") WriteHandle(STD_ERROR_HANDLE, Unescape(value));
  if (verb == "sleep") Sleep(static_cast<DWORD>(std::atoi(value.c_str())));
  if (verb == "await") Await(value);
  if (verb == "touch") WriteText(value, "");
  if (verb == "write") WriteLine(value);
  if (verb == "args") WriteDescription(value);
  if (verb == "env") WriteVariable(value);
  if (verb == "child") StartChild(value);
  if (verb == "exit") std::exit(std::atoi(value.c_str()));
}

void Talk() {
  char milliseconds[16] = "";
  GetEnvironmentVariableA("TEST_TOOL_TALKS", milliseconds, sizeof milliseconds);
  const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(std::atoi(milliseconds));
  while (GetTickCount64() < end) {
    WriteHandle(STD_OUTPUT_HANDLE, "Progress 0.50 done");
    Sleep(100);
  }
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 0; i < argc; ++i) {
    const std::string argument = argv[i];
    const size_t colon = argument.find(':');
    if (colon != std::string::npos) Do(argument.substr(0, colon), argument.substr(colon + 1));
  }
  Talk();
  return 0;
}
