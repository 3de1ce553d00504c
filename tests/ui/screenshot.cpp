#include "ui/screenshot.h"

// After windows.h, which leaves these two out when it is lean. GDI+ uses min and max unqualified.
#include <objidl.h>

#include <algorithm>
#include <memory>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>

#include "files/wide_text.h"
#include "ui/window_driver.h"

namespace {

constexpr DWORD kStillInterval = 150;   // ms
constexpr DWORD kStillPatience = 3000;  // ms
constexpr CLSID kPngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

// A bitmap in memory to draw into and to read.
class Canvas {
 public:
  Canvas(int width, int height) : m_nWidth(width), m_nHeight(height) {
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

  Picture Read() const {
    if (m_pBits == nullptr) return {};
    GdiFlush();
    const auto* first = static_cast<const uint32_t*>(m_pBits);
    Picture picture = {m_nWidth, m_nHeight, {first, first + m_nWidth * m_nHeight}};
    for (uint32_t& pixel : picture.pixels) pixel &= 0xFFFFFF;
    return picture;
  }

 private:
  int m_nWidth;
  int m_nHeight;
  void* m_pBits = nullptr;
  HBITMAP m_hBitmap = nullptr;
  HDC m_hContext = nullptr;
  HGDIOBJ m_hPrevious = nullptr;
};

// Keeps GDI+ going while it lives.
class GdiplusSession {
 public:
  GdiplusSession() {
    const Gdiplus::GdiplusStartupInput input;
    m_bStarted = Gdiplus::GdiplusStartup(&m_nToken, &input, nullptr) == Gdiplus::Ok;
  }
  ~GdiplusSession() {
    if (m_bStarted) Gdiplus::GdiplusShutdown(m_nToken);
  }
  GdiplusSession(const GdiplusSession&) = delete;
  GdiplusSession& operator=(const GdiplusSession&) = delete;

  bool IsStarted() const { return m_bStarted; }

 private:
  ULONG_PTR m_nToken = 0;
  bool m_bStarted = false;
};

}  // namespace

Picture TakePicture(const RECT& whole) {
  const RECT all = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  RECT place = {};
  IntersectRect(&place, &whole, &all);
  const int width = place.right - place.left;
  const int height = place.bottom - place.top;
  if (width <= 0 || height <= 0) return {};
  const Canvas canvas(width, height);
  const HDC screen = GetDC(nullptr);
  BitBlt(canvas.Context(), 0, 0, width, height, screen, place.left, place.top, SRCCOPY);
  ReleaseDC(nullptr, screen);
  return canvas.Read();
}

Picture TakePictureWhenStill(HWND window) {
  Picture picture;
  ULONGLONG next = 0;
  WaitUntil(
      [&] {
        if (GetTickCount64() < next) return false;
        next = GetTickCount64() + kStillInterval;
        Picture now = TakePicture(Window(window).Place());
        const bool still = now == picture;
        picture = std::move(now);
        return still;
      },
      kStillPatience);
  return picture;
}

Picture DrawSystemIcon(const char* icon) {
  const int width = GetSystemMetrics(SM_CXICON);
  const int height = GetSystemMetrics(SM_CYICON);
  const Canvas canvas(width, height);
  const RECT all = {0, 0, width, height};
  FillRect(canvas.Context(), &all, GetSysColorBrush(COLOR_3DFACE));
  DrawIconEx(canvas.Context(), 0, 0, LoadIconA(nullptr, icon), width, height, 0, nullptr, DI_NORMAL);
  return canvas.Read();
}

bool SavePng(const Picture& picture, const std::string& path) {
  const GdiplusSession session;
  if (!session.IsStarted() || picture.pixels.empty()) return false;
  std::vector<uint32_t> pixels = picture.pixels;
  Gdiplus::Bitmap bitmap(picture.width, picture.height, picture.width * static_cast<int>(sizeof pixels[0]),
                         PixelFormat32bppRGB, reinterpret_cast<BYTE*>(pixels.data()));
  return bitmap.Save(WideFromAnsi(path).c_str(), &kPngEncoder, nullptr) == Gdiplus::Ok;
}
