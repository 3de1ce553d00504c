// Test code: makes another process crash in each of the thirteen ways, by a thread in it that begins
// right in the function that a program calls when that happens. Nothing of that process is changed
// before. Win32; the process is 64-bit, links the shared C++ library of GCC, and is at rest.
#ifndef MOSAICON_CRASHRPT_TESTING_PROVOKE_CRASH_H_
#define MOSAICON_CRASHRPT_TESTING_PROVOKE_CRASH_H_

#include <windows.h>

#include <string>

struct ProvokedCrash {
  DWORD threadId = 0;  // of the thread that crashes; 0: it could not be started
  std::string error;   // why not
};

// process: with the rights of PROCESS_ALL_ACCESS. kind: a crash type, 0 to 12.
ProvokedCrash ProvokeCrash(HANDLE process, int kind);

#endif  // MOSAICON_CRASHRPT_TESTING_PROVOKE_CRASH_H_
