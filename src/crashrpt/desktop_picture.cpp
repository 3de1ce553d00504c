#include "crashrpt/desktop_picture.h"

#include <windows.h>
// The headers of GDI+ need these.
#include <objidl.h>

#include <algorithm>
#include <memory>

namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>

#include "files/wide_text.h"

namespace {

namespace flat = Gdiplus::DllExports;

constexpr CLSID kPngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

struct BitmapDeleter {
  void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
};
using Bitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, BitmapDeleter>;

class ScreenContext {
 public:
  ScreenContext() : m_hScreen(GetDC(nullptr)), m_hMemory(CreateCompatibleDC(m_hScreen)) {}
  ~ScreenContext() {
    DeleteDC(m_hMemory);
    ReleaseDC(nullptr, m_hScreen);
  }
  ScreenContext(const ScreenContext&) = delete;
  ScreenContext& operator=(const ScreenContext&) = delete;

  // Null when it failed.
  Bitmap CopyDesktop() const {
    const int left = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const int top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    const int width = GetSystemMetrics(SM_CXVIRTUALSCREEN);
    const int height = GetSystemMetrics(SM_CYVIRTUALSCREEN);
    Bitmap bitmap(CreateCompatibleBitmap(m_hScreen, width, height));
    if (bitmap == nullptr) return nullptr;
    const HGDIOBJ before = SelectObject(m_hMemory, bitmap.get());
    const BOOL copied = BitBlt(m_hMemory, 0, 0, width, height, m_hScreen, left, top, SRCCOPY | CAPTUREBLT);
    SelectObject(m_hMemory, before);
    return copied ? std::move(bitmap) : nullptr;
  }

 private:
  HDC m_hScreen;
  HDC m_hMemory;
};

class GdiPlus {
 public:
  GdiPlus() {
    const Gdiplus::GdiplusStartupInput input;
    m_bStarted = Gdiplus::GdiplusStartup(&m_token, &input, nullptr) == Gdiplus::Ok;
  }
  ~GdiPlus() {
    if (m_bStarted) Gdiplus::GdiplusShutdown(m_token);
  }
  GdiPlus(const GdiPlus&) = delete;
  GdiPlus& operator=(const GdiPlus&) = delete;

  bool SavePng(HBITMAP bitmap, const std::string& path) const {
    Gdiplus::GpBitmap* image = nullptr;
    if (!m_bStarted || flat::GdipCreateBitmapFromHBITMAP(bitmap, nullptr, &image) != Gdiplus::Ok)
      return false;
    const auto status = flat::GdipSaveImageToFile(image, WideFromAnsi(path).c_str(), &kPngEncoder, nullptr);
    flat::GdipDisposeImage(image);
    return status == Gdiplus::Ok;
  }

 private:
  ULONG_PTR m_token = 0;
  bool m_bStarted = false;
};

}  // namespace

std::string WriteDesktopPicture(const std::string& path) {
  const ScreenContext screen;
  const Bitmap bitmap = screen.CopyDesktop();
  if (bitmap == nullptr) return "The screen could not be copied.";
  const GdiPlus gdiPlus;
  return gdiPlus.SavePng(bitmap.get(), path) ? "" : "The picture could not be written.";
}
