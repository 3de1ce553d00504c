// The test's side of windows.h in this folder. A millisecond of the system takes kMillisecond here. The
// thread that calls Reset is the user-interface thread.
#ifndef MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_H_
#define MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_H_

#include <windows.h>

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace threads {

inline constexpr std::chrono::microseconds kMillisecond{10};

// What a started program does, on a thread of its own.
class Program {
 public:
  virtual ~Program() = default;
  virtual void Say(const std::string& text) = 0;
  // False when the program was killed meanwhile, and has to return.
  virtual bool Wait(DWORD milliseconds) = 0;
  // The same; waits until all that it said was read.
  virtual bool WaitUntilRead() = 0;
  // Whether it was assigned to a job object.
  virtual bool IsInTree() = 0;
  // How it ends if nobody kills it; 0 without this.
  virtual void ExitWith(UINT exitCode) = 0;
};

// One call of CreateProcessA, as it was at that moment.
struct Start {
  std::string application;
  std::string commandLine;
  std::string directory;
  BOOL inheritHandles = FALSE;
  DWORD flags = 0;
  STARTUPINFOA startup = {};
  std::vector<HANDLE> inherited;
};

// Forgets everything, and waits for the programs that still run.
void Reset();
// What the next programs do; without it they end at once.
void SetProgram(std::function<void(Program&)> program);
// Makes this call of a function, counted from 1, fail.
void FailAt(const std::string& function, int call);
// Runs in every KVT_PumpMessages of the user-interface thread, after what other threads sent.
void SetOnPump(std::function<void()> onPump);
// Lets through what other threads send, and nothing else.
void DispatchSent();

std::vector<Start> Starts();
std::vector<UINT> ExitCodes();           // of the programs that have ended
std::vector<DWORD> SleepsOfInterface();  // milliseconds of each Sleep of the user-interface thread
std::vector<DWORD> WaitsOfOthers();      // milliseconds of each limited wait of other threads
int PumpsOfOthers();                     // calls of KVT_PumpMessages by other threads
int OpenHandles();
int Mistakes();  // handles used that are not open, or of another kind
bool IsInheritable(HANDLE object);

}  // namespace threads

#endif  // MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_H_
