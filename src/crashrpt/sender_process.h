// Starts the sender from the program that may crash, while the program is well: once it runs, nothing of
// the program is needed but its events. Win32.
#ifndef MOSAICON_CRASHRPT_SENDER_PROCESS_H_
#define MOSAICON_CRASHRPT_SENDER_PROCESS_H_

#include <windows.h>

#include <string>

#include "handles/unique_handle.h"

// What the sender gets, and nothing else that the program has open.
struct SenderHandles {
  HANDLE handOver;     // file mapping with a HandOver
  HANDLE crashed;      // event, set by the program
  HANDLE reportTaken;  // event, set by the sender
  HANDLE program;      // this process
};

class SenderProcess {
 public:
  SenderProcess() = default;
  SenderProcess(const SenderProcess&) = delete;
  SenderProcess& operator=(const SenderProcess&) = delete;
  // Lives as long as the process: there is no end.

  // Once, before the others. The handles must stay open. Returns false with the reason.
  bool Prepare(const std::string& program, const SenderHandles& handles, std::string& error);

  // Starts one that waits for the crash or the end of this process, or one that delivers what was left
  // over. Returns the process, or null. One thread, always the same.
  UniqueHandle StartToWait();
  UniqueHandle StartForRetry();

  // Otherwise the window of the one that waits would open behind those of other programs. On that thread.
  void AllowToComeForward() const;

 private:
  static constexpr size_t kMaxCommandLine = 1400;
  static constexpr size_t kHandles = 4;

  bool PrepareAttributes();
  PROCESS_INFORMATION Start(char* commandLine);
  void SetInheritable(bool inheritable);

  char m_program[MAX_PATH] = "";
  char m_folder[MAX_PATH] = "";
  char m_waitCommand[kMaxCommandLine] = "";
  char m_retryCommand[kMaxCommandLine] = "";
  HANDLE m_handles[kHandles] = {};
  DWORD m_waitingId = 0;
  alignas(16) unsigned char m_attributes[512] = {};
};

#endif  // MOSAICON_CRASHRPT_SENDER_PROCESS_H_
