// Starts a program as the batch driver starts its tools, for the test of the Wine python.exe:
// CreateProcessA with the program apart from the raw command line, no window, standard output and
// standard error in one inherited pipe.
//
//     launcher_for_test PROGRAM MILLISECONDS COMMAND-LINE
//
// Terminates the program so many milliseconds after its first output, with exit code 77; 0 lets it
// run. Copies its output to standard output at once, up to the end of the pipe, then prints
// "exit code N" on standard error. Ends with 0, or with 2 when the program could not be started.

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include "handles/unique_handle.h"

namespace {

constexpr UINT kTerminated = 77;

void CopyOutput(HANDLE pipe, HANDLE process, DWORD lifetime_ms) {
  std::jthread killer;
  char buffer[4096];
  DWORD size = 0;
  while (ReadFile(pipe, buffer, sizeof buffer, &size, nullptr)) {
    if (lifetime_ms != 0 && !killer.joinable()) {
      killer = std::jthread([process, lifetime_ms] {
        if (WaitForSingleObject(process, lifetime_ms) == WAIT_TIMEOUT) {
          TerminateProcess(process, kTerminated);
        }
      });
    }
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), buffer, size, &written, nullptr);
  }
}

int Launch(const char* program, DWORD lifetime_ms, char* command_line) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE read_end = nullptr;
  HANDLE write_end = nullptr;
  if (!CreatePipe(&read_end, &write_end, &inherited, 0)) {
    return 2;
  }
  const UniqueHandle output(read_end);
  UniqueHandle input(write_end);
  SetHandleInformation(read_end, HANDLE_FLAG_INHERIT, 0);

  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = write_end;
  startup.hStdError = write_end;
  PROCESS_INFORMATION started{};
  if (!CreateProcessA(program, command_line, nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                      &startup, &started)) {
    std::fprintf(stderr, "cannot start %s: error %lu\n", program, GetLastError());
    return 2;
  }
  const UniqueHandle process(started.hProcess);
  const UniqueHandle thread(started.hThread);
  input.reset();

  CopyOutput(output.get(), process.get(), lifetime_ms);
  WaitForSingleObject(process.get(), INFINITE);
  DWORD exit_code = 0;
  GetExitCodeProcess(process.get(), &exit_code);
  std::fprintf(stderr, "exit code %lu\n", exit_code);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: launcher_for_test PROGRAM MILLISECONDS COMMAND-LINE\n");
    return 2;
  }
  return Launch(argv[1], static_cast<DWORD>(std::strtoul(argv[2], nullptr, 10)), argv[3]);
}
