#include "ui/resources_of.h"

// After windows.h.
#include <psapi.h>
#include <winternl.h>

namespace {

constexpr ULONG_PTR kHighestHandle = 0x4000;
// In the process's environment block: the table of its drawing objects.
constexpr size_t kDrawingTableOffset = 0xF8;
constexpr size_t kDrawingTableEntries = 0x4000;

struct DrawingTableEntry {
  ULONGLONG object;
  DWORD owner;
  WORD unique;
  BYTE type;  // 0: free
  BYTE flags;
  ULONGLONG userPointer;
};
static_assert(sizeof(DrawingTableEntry) == 24);

int CountHandles(HANDLE process) {
  int count = 0;
  for (ULONG_PTR value = 4; value < kHighestHandle; value += 4) {
    HANDLE copy = nullptr;
    if (!DuplicateHandle(process, reinterpret_cast<HANDLE>(value), GetCurrentProcess(), &copy, 0, FALSE,
                         DUPLICATE_SAME_ACCESS)) {
      continue;
    }
    CloseHandle(copy);
    ++count;
  }
  return count;
}

template <class Value>
bool ReadFrom(HANDLE process, const void* address, Value* values, size_t count = 1) {
  SIZE_T read = 0;
  return ReadProcessMemory(process, address, values, count * sizeof(Value), &read) &&
         read == count * sizeof(Value);
}

int CountDrawingObjects(const Program& program) {
  PROCESS_BASIC_INFORMATION basics = {};
  const char* table = nullptr;
  std::vector<DrawingTableEntry> entries(kDrawingTableEntries);
  if (NtQueryInformationProcess(program.Process(), ProcessBasicInformation, &basics, sizeof basics, nullptr) <
          0 ||
      !ReadFrom(program.Process(), reinterpret_cast<const char*>(basics.PebBaseAddress) + kDrawingTableOffset,
                &table) ||
      !ReadFrom(program.Process(), table, entries.data(), entries.size())) {
    return 0;
  }
  int count = 0;
  for (const DrawingTableEntry& entry : entries) count += entry.type != 0 ? 1 : 0;
  return count;
}

BOOL CALLBACK CountChild(HWND, LPARAM count) {
  ++*reinterpret_cast<int*>(count);
  return TRUE;
}

struct WindowCount {
  DWORD process;
  int count;
};

BOOL CALLBACK CountTree(HWND window, LPARAM parameter) {
  auto& windows = *reinterpret_cast<WindowCount*>(parameter);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != windows.process) return TRUE;
  ++windows.count;
  EnumChildWindows(window, CountChild, reinterpret_cast<LPARAM>(&windows.count));
  return TRUE;
}

// Hidden ones too.
int CountWindows(DWORD process) {
  WindowCount windows = {process, 0};
  EnumWindows(CountTree, reinterpret_cast<LPARAM>(&windows));
  return windows.count;
}

double PrivateMegabytes(HANDLE process) {
  PROCESS_MEMORY_COUNTERS counters = {};
  GetProcessMemoryInfo(process, &counters, sizeof counters);
  return static_cast<double>(counters.PagefileUsage) / (1 << 20);
}

}  // namespace

ResourceCount CountResources(const Program& program) {
  return {CountHandles(program.Process()), CountDrawingObjects(program), CountWindows(program.Id()),
          PrivateMegabytes(program.Process())};
}

std::ostream& operator<<(std::ostream& out, const ResourceCount& count) {
  return out << count.handles << " handles, " << count.drawingObjects << " drawing objects, " << count.windows
             << " windows, " << count.privateMegabytes << " MB";
}
