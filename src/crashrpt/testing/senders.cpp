// Test program: crashrpt_senders PROCESS_ID [end] prints the ids of the senders that this process has
// started and that run, and ends them when it is told to.

#include <windows.h>
// After windows.h.
#include <tlhelp32.h>

#include <cstdio>
#include <cstdlib>

#include "handles/unique_handle.h"

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  const DWORD program = std::strtoul(argv[1], nullptr, 10);
  const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32 entry = {};
  entry.dwSize = sizeof entry;
  for (BOOL more = Process32First(snapshot.get(), &entry); more;
       more = Process32Next(snapshot.get(), &entry)) {
    if (entry.th32ParentProcessID != program || _stricmp(entry.szExeFile, "crashsender.exe") != 0) continue;
    std::printf("%lu\n", entry.th32ProcessID);
    if (argc == 2) continue;
    const UniqueHandle sender(OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, entry.th32ProcessID));
    TerminateProcess(sender.get(), 1);
    WaitForSingleObject(sender.get(), INFINITE);
  }
  return 0;
}
