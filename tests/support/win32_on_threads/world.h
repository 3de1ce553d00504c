// What stands behind windows.h in this folder: the open handles, and what the test has asked for. Everything
// is guarded by the one mutex.
#ifndef MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_WORLD_H_
#define MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_WORLD_H_

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "win32_on_threads.h"

namespace threads {

enum class Kind { kEvent, kSemaphore, kThread, kProcess, kPipeEnd, kJob };

struct Pipe {
  std::string data;
};

// What a handle stands for. Everything in it is guarded by the world's mutex.
struct Object {
  Kind kind = Kind::kEvent;
  bool inheritable = false;
  bool signalled = false;
  LONG count = 0;
  std::shared_ptr<Pipe> pipe;
  UINT exitCode = 0;
  bool killed = false;
  bool suspended = false;
  bool inTree = false;
  std::shared_ptr<Object> process;  // of a process's first thread
  std::thread thread;
};

struct Sent {
  HWND window;
  UINT message;
  WPARAM wParam;
  bool done = false;
};

struct World {
  std::mutex mutex;
  std::condition_variable changed;
  std::map<HANDLE, std::shared_ptr<Object>> open;
  std::thread::id interface;
  std::vector<Sent*> sent;
  std::string directory = "C:\\start";
  std::function<void(Program&)> program;
  std::function<void()> onPump;
  std::map<std::string, int> calls;
  std::set<std::pair<std::string, int>> failing;
  std::vector<Start> starts;
  std::vector<UINT> exitCodes;
  std::vector<DWORD> interfaceSleeps;
  std::vector<DWORD> otherWaits;
  int otherPumps = 0;
  int mistakes = 0;
};

World& TheWorld();

using Lock = std::unique_lock<std::mutex>;

// All of these with the lock held.

// The open object of a handle; null, and a mistake, when there is none.
std::shared_ptr<Object> Find(HANDLE handle, Kind kind);
HANDLE Open(Kind kind, std::shared_ptr<Object> object = std::make_shared<Object>());
// Counts a call of a function, and tells whether it is to fail.
bool Fails(const std::string& function);
bool IsInterface();

// Waits until ready, or for that long; false when the time was over.
template <class Ready>
bool WaitUntil(Lock& lock, DWORD milliseconds, Ready ready) {
  World& world = TheWorld();
  if (milliseconds == INFINITE) {
    world.changed.wait(lock, ready);
    return true;
  }
  if (milliseconds > 0 && !IsInterface()) world.otherWaits.push_back(milliseconds);
  return world.changed.wait_for(lock, milliseconds * kMillisecond, ready);
}

}  // namespace threads

#endif  // MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_WORLD_H_
