// Windows of a test and what can be seen of them. Win32; needs a screen.
#ifndef MOSAICON_TESTS_RESOURCES_WINDOW_PIXELS_H_
#define MOSAICON_TESTS_RESOURCES_WINDOW_PIXELS_H_

#include <windows.h>

#include <cstdint>
#include <vector>

#include "support/canvas.h"

// Colours as 0x00RRGGBB, top row first.
using Pixels = std::vector<uint32_t>;

// The client area of a window, as it is on the screen.
inline Pixels ReadWindow(HWND window, int width, int height) {
  const Canvas canvas(width, height);
  BitBlt(canvas.Context(), 0, 0, width, height, WindowContext(window).Get(), 0, 0, SRCCOPY);
  return canvas.Read();
}

// Lets the windows of this thread work for some time.
inline void PumpFor(DWORD milliseconds) {
  const DWORD start = GetTickCount();
  while (GetTickCount() - start < milliseconds) {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    Sleep(5);
  }
}

#endif  // MOSAICON_TESTS_RESOURCES_WINDOW_PIXELS_H_
