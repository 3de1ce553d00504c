#include <windows.h>

#include "kvtools/copy_bounded.h"
#include "kvtools/kvtools.h"
#include "kvtools/system_text.h"

int KVT_GetRAMInfo(char* buffer, int size) {
  MEMORYSTATUSEX memory = {};
  memory.dwLength = sizeof memory;
  if (!GlobalMemoryStatusEx(&memory)) return CopyBounded("", buffer, size);
  return CopyBounded(DescribeMemory(memory.ullTotalPhys, memory.ullAvailPhys), buffer, size);
}
