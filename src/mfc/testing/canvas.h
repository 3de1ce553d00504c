// A memory device context with a picture of its own in full colour, black at first. For tests.
#ifndef MOSAICON_MFC_TESTING_CANVAS_H_
#define MOSAICON_MFC_TESTING_CANVAS_H_

#include <windows.h>

#include <cstdint>
#include <vector>

#include "mfc/dc.h"
#include "mfc/gdi_objects.h"

class TestCanvas : public CDC {
 public:
  TestCanvas(int width, int height) : m_nWidth(width), m_nHeight(height) {
    CreateCompatibleDC(nullptr);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    m_picture.Attach(CreateDIBSection(m_hDC, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    m_pBits = static_cast<const std::uint32_t*>(bits);
    m_hOldPicture = ::SelectObject(m_hDC, m_picture.GetSafeHandle());
  }
  ~TestCanvas() override { ::SelectObject(m_hDC, m_hOldPicture); }

  // Whatever the clip region and the units.
  COLORREF Pixel(int x, int y) const {
    GdiFlush();
    const std::uint32_t bgr = m_pBits[y * m_nWidth + x];
    return RGB((bgr >> 16) & 0xFF, (bgr >> 8) & 0xFF, bgr & 0xFF);
  }
  std::vector<COLORREF> Pixels() const {
    std::vector<COLORREF> pixels;
    for (int y = 0; y < m_nHeight; ++y) {
      for (int x = 0; x < m_nWidth; ++x) pixels.push_back(Pixel(x, y));
    }
    return pixels;
  }

 private:
  const int m_nWidth;
  const int m_nHeight;
  CGdiObject m_picture;
  HGDIOBJ m_hOldPicture = nullptr;
  const std::uint32_t* m_pBits = nullptr;
};

#endif  // MOSAICON_MFC_TESTING_CANVAS_H_
