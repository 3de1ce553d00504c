// Counts what this process has open, so that a test can show that nothing leaks.
#ifndef MOSAICON_TESTS_SUPPORT_OPEN_HANDLES_H_
#define MOSAICON_TESTS_SUPPORT_OPEN_HANDLES_H_

#ifdef _WIN32

#include <windows.h>

// Every handle is tried: GetProcessHandleCount tells nothing under Wine.
inline int CountOpenHandles() {
  int count = 0;
  for (ULONG_PTR value = 4; value < 0x4000; value += 4) {
    DWORD flags = 0;
    if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++count;
  }
  return count;
}

// Fonts, bitmaps, device contexts and other objects to draw with.
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

#else

#include <fcntl.h>

inline int CountOpenHandles() {
  int count = 0;
  for (int file = 0; file < 4096; ++file) {
    if (fcntl(file, F_GETFD) != -1) ++count;
  }
  return count;
}

#endif

// Whether something opens more and more each time that it is done. The first times may open what stays: a
// lock at which two threads meet has a handle from then on, and they meet whenever the machine is busy
// enough.
template <class Function>
bool LeavesMoreAndMoreOpen(const Function& function) {
  constexpr int kTimes = 5;
  for (int i = 0; i < kTimes; ++i) {
    const int before = CountOpenHandles();
    function();
    if (CountOpenHandles() <= before) return false;
  }
  return true;
}

#endif  // MOSAICON_TESTS_SUPPORT_OPEN_HANDLES_H_
