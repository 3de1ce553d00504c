#include "ui/screenshot.h"

// After windows.h, which leaves these two out when it is lean. GDI+ uses min and max unqualified.
#include <objidl.h>

#include <algorithm>
#include <memory>
#include <utility>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>

#include "files/wide_text.h"
#include "handles/drawing_handles.h"
#include "support/canvas.h"
#include "ui/window_driver.h"

namespace {

constexpr DWORD kStillInterval = 150;   // ms
constexpr DWORD kStillPatience = 3000;  // ms
constexpr CLSID kPngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

// Empty when there was no memory for the canvas.
Picture PictureOn(const Canvas& canvas, int width, int height) {
  std::vector<uint32_t> pixels = canvas.Read();
  if (pixels.empty()) return {};
  return {width, height, std::move(pixels)};
}

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
  BitBlt(canvas.Context(), 0, 0, width, height, WindowContext(nullptr).Get(), place.left, place.top, SRCCOPY);
  return PictureOn(canvas, width, height);
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
  return PictureOn(canvas, width, height);
}

bool SavePng(const Picture& picture, const std::string& path) {
  const GdiplusSession session;
  if (!session.IsStarted() || picture.pixels.empty()) return false;
  std::vector<uint32_t> pixels = picture.pixels;
  Gdiplus::Bitmap bitmap(picture.width, picture.height, picture.width * static_cast<int>(sizeof pixels[0]),
                         PixelFormat32bppRGB, reinterpret_cast<BYTE*>(pixels.data()));
  return bitmap.Save(WideFromAnsi(path).c_str(), &kPngEncoder, nullptr) == Gdiplus::Ok;
}
