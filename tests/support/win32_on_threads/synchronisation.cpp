// Waiting: what threads tell one another by handles, flags and messages.
#include <commctrl.h>
#include <process.h>

#include <algorithm>

#include "kvtools/kvtools.h"
#include "mfc/wnd.h"
#include "world.h"

using threads::Find;
using threads::IsInterface;
using threads::Kind;
using threads::Lock;
using threads::Object;
using threads::Open;
using threads::TheWorld;
using threads::World;

namespace {

bool IsReady(const Object& object) {
  return object.signalled || object.count > 0;
}

}  // namespace

HANDLE CreateSemaphoreA(SECURITY_ATTRIBUTES*, LONG initial, LONG, const char*) {
  const Lock lock(TheWorld().mutex);
  if (threads::Fails("CreateSemaphoreA")) return nullptr;
  const HANDLE handle = Open(Kind::kSemaphore);
  TheWorld().open[handle]->count = initial;
  return handle;
}

BOOL ReleaseSemaphore(HANDLE semaphore, LONG count, LONG*) {
  const Lock lock(TheWorld().mutex);
  const auto object = Find(semaphore, Kind::kSemaphore);
  if (object == nullptr || threads::Fails("ReleaseSemaphore")) return FALSE;
  object->count += count;
  TheWorld().changed.notify_all();
  return TRUE;
}

HANDLE CreateEventA(SECURITY_ATTRIBUTES*, BOOL, BOOL initial, const char*) {
  const Lock lock(TheWorld().mutex);
  if (threads::Fails("CreateEventA")) return nullptr;
  const HANDLE handle = Open(Kind::kEvent);
  TheWorld().open[handle]->signalled = initial != FALSE;
  return handle;
}

BOOL SetEvent(HANDLE event) {
  const Lock lock(TheWorld().mutex);
  if (event == nullptr) return FALSE;
  const auto object = Find(event, Kind::kEvent);
  if (object == nullptr) return FALSE;
  object->signalled = true;
  TheWorld().changed.notify_all();
  return TRUE;
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL all, DWORD milliseconds) {
  World& world = TheWorld();
  Lock lock(world.mutex);
  std::vector<std::shared_ptr<Object>> waited;
  for (DWORD i = 0; i < count; ++i) {
    const auto found = world.open.find(objects[i]);
    if (found == world.open.end()) {
      ++world.mistakes;
      return WAIT_FAILED;
    }
    waited.push_back(found->second);
  }
  const auto ready = [&] {
    const auto isReady = [](const auto& object) { return IsReady(*object); };
    return all ? std::all_of(waited.begin(), waited.end(), isReady)
               : std::any_of(waited.begin(), waited.end(), isReady);
  };
  if (!threads::WaitUntil(lock, milliseconds, ready)) return WAIT_TIMEOUT;
  for (DWORD i = 0; i < count; ++i) {
    if (!IsReady(*waited[i])) continue;
    if (waited[i]->kind == Kind::kSemaphore) --waited[i]->count;
    if (!all) return WAIT_OBJECT_0 + i;
  }
  return WAIT_OBJECT_0;
}

DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds) {
  return WaitForMultipleObjects(1, &object, FALSE, milliseconds);
}

BOOL CloseHandle(HANDLE handle) {
  std::shared_ptr<Object> object;
  {
    const Lock lock(TheWorld().mutex);
    const auto found = TheWorld().open.find(handle);
    if (found == TheWorld().open.end()) {
      ++TheWorld().mistakes;
      return FALSE;
    }
    object = found->second;
    TheWorld().open.erase(found);
  }
  // Threads and programs are closed when they have ended, or been killed.
  if (object->thread.joinable()) object->thread.join();
  return TRUE;
}

void InitializeCriticalSection(CRITICAL_SECTION* section) {
  section->mutex = new std::mutex;
}
void EnterCriticalSection(CRITICAL_SECTION* section) {
  static_cast<std::mutex*>(section->mutex)->lock();
}
void LeaveCriticalSection(CRITICAL_SECTION* section) {
  static_cast<std::mutex*>(section->mutex)->unlock();
}
void DeleteCriticalSection(CRITICAL_SECTION* section) {
  delete static_cast<std::mutex*>(section->mutex);
}

// Takes no lock with 0: that would order what only the flags may order.
void Sleep(DWORD milliseconds) {
  if (milliseconds > 0 && IsInterface()) {
    const Lock lock(TheWorld().mutex);
    TheWorld().interfaceSleeps.push_back(milliseconds);
  }
  if (milliseconds == 0) {
    std::this_thread::yield();
  } else {
    std::this_thread::sleep_for(milliseconds * threads::kMillisecond);
  }
}

uintptr_t _beginthreadex(void*, unsigned, unsigned (*procedure)(void*), void* argument, unsigned, unsigned*) {
  const Lock lock(TheWorld().mutex);
  if (threads::Fails("_beginthreadex")) return 0;
  const auto object = std::make_shared<Object>();
  object->thread = std::thread([object, procedure, argument] {
    procedure(argument);
    const Lock end(TheWorld().mutex);
    object->signalled = true;
    TheWorld().changed.notify_all();
  });
  return reinterpret_cast<uintptr_t>(Open(Kind::kThread, object));
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM) {
  World& world = TheWorld();
  Lock lock(world.mutex);
  threads::Sent sent = {window, message, wParam};
  world.sent.push_back(&sent);
  world.changed.wait(lock, [&sent] { return sent.done; });
  return 0;
}

void KVT_PumpMessages() {
  if (!IsInterface()) {
    const Lock lock(TheWorld().mutex);
    ++TheWorld().otherPumps;
    return;
  }
  threads::DispatchSent();
  std::function<void()> onPump;
  {
    const Lock lock(TheWorld().mutex);
    onPump = TheWorld().onPump;
  }
  if (onPump) onPump();
  std::this_thread::sleep_for(threads::kMillisecond);
}
