// A picture in memory to draw into and to read. Win32.
#ifndef MOSAICON_TESTS_SUPPORT_CANVAS_H_
#define MOSAICON_TESTS_SUPPORT_CANVAS_H_

#include <windows.h>

#include <cstdint>
#include <vector>

#include "handles/drawing_handles.h"

class Canvas {
 public:
  // In pixels.
  Canvas(int width, int height) : m_nPixels(static_cast<size_t>(width) * static_cast<size_t>(height)) {
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    m_bitmap.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &m_pBits, nullptr, 0));
    m_hBefore = SelectObject(m_context.Get(), m_bitmap.get());
  }
  ~Canvas() { SelectObject(m_context.Get(), m_hBefore); }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  HDC Context() const { return m_context.Get(); }

  // As 0x00RRGGBB, top row first; none when there was no memory for the picture.
  std::vector<uint32_t> Read() const {
    if (m_pBits == nullptr) return {};
    GdiFlush();
    const auto* first = static_cast<const uint32_t*>(m_pBits);
    std::vector<uint32_t> pixels(first, first + m_nPixels);
    for (uint32_t& pixel : pixels) pixel &= 0xFFFFFF;
    return pixels;
  }

 private:
  const size_t m_nPixels;
  const MemoryContext m_context{nullptr};
  GdiObject<HBITMAP> m_bitmap;
  HGDIOBJ m_hBefore = nullptr;
  void* m_pBits = nullptr;
};

#endif  // MOSAICON_TESTS_SUPPORT_CANVAS_H_
