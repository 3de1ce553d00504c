// Counts the graphics objects of this process, so that a test can show that none leaks. Win32.
#ifndef MOSAICON_PROGRESS_TESTING_COUNT_GDI_OBJECTS_H_
#define MOSAICON_PROGRESS_TESTING_COUNT_GDI_OBJECTS_H_

#include <windows.h>

inline int CountGdiObjects() {
  const DWORD told = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  if (told != 0) return static_cast<int>(told);
  // Wine does not tell. It takes an object's index, the lower half of its handle, for the handle.
  int count = 0;
  for (ULONG_PTR index = 1; index <= 0xFFFF; ++index) {
    if (GetObjectType(reinterpret_cast<HGDIOBJ>(index)) != 0) ++count;
  }
  return count;
}

#endif  // MOSAICON_PROGRESS_TESTING_COUNT_GDI_OBJECTS_H_
