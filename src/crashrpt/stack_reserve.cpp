#include "crashrpt/stack_reserve.h"

#include <windows.h>

namespace {

// Wine clears a new stack of the usual size down to its last 60 KB, and the guard must lie below that.
constexpr ULONG kReserve = 32 * 1024;
constexpr SIZE_T kPage = 4096;

}  // namespace

void ReserveStackForCrash() {
  ULONG size = kReserve;
  SetThreadStackGuarantee(&size);
  // Where the whole stack is committed from the start, as Wine does it, the guard page lies at its very
  // end, and the overflow would be noticed when the reserve is used up already. Elsewhere this memory is
  // not committed yet, and nothing happens here.
  MEMORY_BASIC_INFORMATION here = {};
  if (VirtualQuery(&here, &here, sizeof here) == 0) return;
  DWORD before = 0;
  VirtualProtect(static_cast<char*>(here.AllocationBase) + kReserve, kPage, PAGE_READWRITE | PAGE_GUARD,
                 &before);
}
