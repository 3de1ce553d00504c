// Keeps the computer from going to sleep for want of input, for as long as it lives; the screen may go dark.
// Win32; belongs to the thread that made it.
#ifndef MOSAICON_HANDLES_KEEP_AWAKE_H_
#define MOSAICON_HANDLES_KEEP_AWAKE_H_

#include <windows.h>

class KeepAwake {
 public:
  KeepAwake() : m_nBefore(SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED)) {}
  // What was not asked for continuously has had its effect.
  ~KeepAwake() { SetThreadExecutionState((m_nBefore & ES_CONTINUOUS) != 0 ? m_nBefore : ES_CONTINUOUS); }
  KeepAwake(const KeepAwake&) = delete;
  KeepAwake& operator=(const KeepAwake&) = delete;

 private:
  EXECUTION_STATE m_nBefore;
};

#endif  // MOSAICON_HANDLES_KEEP_AWAKE_H_
