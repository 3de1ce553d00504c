// Starts the sender from the program that may have crashed: everything is made ready while the program
// is well, and Start allocates as little as Windows lets it. Win32.
#ifndef MOSAICON_CRASHRPT_SENDER_PROCESS_H_
#define MOSAICON_CRASHRPT_SENDER_PROCESS_H_

#include <windows.h>

#include <string>

// What the sender gets, and nothing else that the program has open.
struct SenderHandles {
  HANDLE handOver;   // file mapping with a HandOver
  HANDLE dumpTaken;  // event, set by the sender
  HANDLE program;    // this process
};

class SenderProcess {
 public:
  SenderProcess() = default;
  SenderProcess(const SenderProcess&) = delete;
  SenderProcess& operator=(const SenderProcess&) = delete;
  // Lives as long as the process: there is no end.

  // Once, before the others. The handles must stay open. Returns false with the reason.
  bool Prepare(const std::string& program, const SenderHandles& handles, std::string& error);

  // Starts it for the report of this process, or to deliver what was left over. Returns the process,
  // for the caller to close, or null. One thread at a time.
  HANDLE StartForReport() { return Start(m_reportCommand); }
  HANDLE StartForRetry() { return Start(m_retryCommand); }

 private:
  static constexpr size_t kMaxCommandLine = 1400;
  static constexpr size_t kHandles = 3;

  bool PrepareAttributes();
  HANDLE Start(char* commandLine);
  void SetInheritable(bool inheritable);

  char m_program[MAX_PATH] = "";
  char m_folder[MAX_PATH] = "";
  char m_reportCommand[kMaxCommandLine] = "";
  char m_retryCommand[kMaxCommandLine] = "";
  HANDLE m_handles[kHandles] = {};
  alignas(16) unsigned char m_attributes[512] = {};
};

#endif  // MOSAICON_CRASHRPT_SENDER_PROCESS_H_
