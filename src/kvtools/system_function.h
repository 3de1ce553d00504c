// Finds functions that not every supported Windows has. Win32; any thread.
#ifndef MOSAICON_KVTOOLS_SYSTEM_FUNCTION_H_
#define MOSAICON_KVTOOLS_SYSTEM_FUNCTION_H_

#include <windows.h>

// The function with this name in a system library that every process has loaded, or null. Function is
// a pointer type.
template <typename Function>
Function FindSystemFunction(const char* library, const char* name) {
  const HMODULE module = GetModuleHandleA(library);
  if (module == nullptr) return nullptr;
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

#endif  // MOSAICON_KVTOOLS_SYSTEM_FUNCTION_H_
