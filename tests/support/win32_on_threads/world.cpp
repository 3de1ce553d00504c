#include "world.h"

#include <commctrl.h>

#include "mfc/wnd.h"

namespace threads {

World& TheWorld() {
  static World world;
  return world;
}

std::shared_ptr<Object> Find(HANDLE handle, Kind kind) {
  World& world = TheWorld();
  const auto found = world.open.find(handle);
  if (found != world.open.end() && found->second->kind == kind) return found->second;
  ++world.mistakes;
  return nullptr;
}

HANDLE Open(Kind kind, std::shared_ptr<Object> object) {
  object->kind = kind;
  TheWorld().open[object.get()] = object;
  return object.get();
}

bool Fails(const std::string& function) {
  World& world = TheWorld();
  return world.failing.count({function, ++world.calls[function]}) > 0;
}

bool IsInterface() {
  return std::this_thread::get_id() == TheWorld().interface;
}

void Reset() {
  World& world = TheWorld();
  std::map<HANDLE, std::shared_ptr<Object>> left;
  {
    const Lock lock(world.mutex);
    left.swap(world.open);
    for (auto& [handle, object] : left) object->killed = true;
    world.changed.notify_all();
  }
  for (auto& [handle, object] : left) {
    if (object->thread.joinable()) object->thread.join();
  }
  const Lock lock(world.mutex);
  world.interface = std::this_thread::get_id();
  world.program = nullptr;
  world.onPump = nullptr;
  world.calls.clear();
  world.failing.clear();
  world.starts.clear();
  world.exitCodes.clear();
  world.interfaceSleeps.clear();
  world.otherWaits.clear();
  world.otherPumps = 0;
  world.mistakes = 0;
}

void SetProgram(std::function<void(Program&)> program) {
  const Lock lock(TheWorld().mutex);
  TheWorld().program = std::move(program);
}

void FailAt(const std::string& function, int call) {
  const Lock lock(TheWorld().mutex);
  TheWorld().calls[function] = 0;
  TheWorld().failing.insert({function, call});
}

void SetOnPump(std::function<void()> onPump) {
  const Lock lock(TheWorld().mutex);
  TheWorld().onPump = std::move(onPump);
}

void DispatchSent() {
  World& world = TheWorld();
  Lock lock(world.mutex);
  while (!world.sent.empty()) {
    Sent& sent = *world.sent.front();
    world.sent.erase(world.sent.begin());
    if (sent.message == PBM_SETPOS) sent.window->positions.push_back(static_cast<int>(sent.wParam));
    sent.done = true;
    world.changed.notify_all();
  }
}

std::vector<Start> Starts() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().starts;
}
std::vector<UINT> ExitCodes() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().exitCodes;
}
std::vector<DWORD> SleepsOfInterface() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().interfaceSleeps;
}
std::vector<DWORD> WaitsOfOthers() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().otherWaits;
}
int PumpsOfOthers() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().otherPumps;
}
int OpenHandles() {
  const Lock lock(TheWorld().mutex);
  return static_cast<int>(TheWorld().open.size());
}
int Mistakes() {
  const Lock lock(TheWorld().mutex);
  return TheWorld().mistakes;
}
bool IsInheritable(HANDLE object) {
  const Lock lock(TheWorld().mutex);
  const auto found = TheWorld().open.find(object);
  return found != TheWorld().open.end() && found->second->inheritable;
}

}  // namespace threads
