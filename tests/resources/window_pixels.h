// Windows of a test and what can be seen of them. Win32; needs a screen.
#ifndef MOSAICON_TESTS_RESOURCES_WINDOW_PIXELS_H_
#define MOSAICON_TESTS_RESOURCES_WINDOW_PIXELS_H_

#include <windows.h>

#include <cstdint>
#include <vector>

// Colours as 0x00RRGGBB, top row first.
using Pixels = std::vector<uint32_t>;

// A memory bitmap to draw into and to read.
class Canvas {
 public:
  Canvas(int width, int height) : m_nPixels(static_cast<size_t>(width) * static_cast<size_t>(height)) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    m_hBitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &m_pBits, nullptr, 0);
    m_hContext = CreateCompatibleDC(nullptr);
    m_hPrevious = SelectObject(m_hContext, m_hBitmap);
  }
  ~Canvas() {
    SelectObject(m_hContext, m_hPrevious);
    DeleteDC(m_hContext);
    DeleteObject(m_hBitmap);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  HDC Context() const { return m_hContext; }

  Pixels Read() const {
    GdiFlush();
    const auto* first = static_cast<const uint32_t*>(m_pBits);
    Pixels pixels(first, first + m_nPixels);
    for (uint32_t& pixel : pixels) pixel &= 0xFFFFFF;
    return pixels;
  }

 private:
  size_t m_nPixels;
  void* m_pBits = nullptr;
  HBITMAP m_hBitmap = nullptr;
  HDC m_hContext = nullptr;
  HGDIOBJ m_hPrevious = nullptr;
};

// The client area of a window, as it is on the screen.
inline Pixels ReadWindow(HWND window, int width, int height) {
  Canvas canvas(width, height);
  HDC source = GetDC(window);
  BitBlt(canvas.Context(), 0, 0, width, height, source, 0, 0, SRCCOPY);
  ReleaseDC(window, source);
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
