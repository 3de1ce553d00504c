#include "crashrpt/desktop_picture.h"

#include <windows.h>
// The headers of GDI+ need these.
#include <objidl.h>

#include <algorithm>
#include <utility>

// Theirs, too. NOLINTBEGIN(misc-unused-using-decls)
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
// NOLINTEND(misc-unused-using-decls)
#include <gdiplus.h>

#include "files/wide_text.h"
#include "handles/drawing_handles.h"

namespace {

namespace flat = Gdiplus::DllExports;

constexpr CLSID kPngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

using Bitmap = GdiObject<HBITMAP>;

// Null when it failed.
Bitmap CopyDesktop() {
  const WindowContext screen(nullptr);
  const MemoryContext memory(screen.Get());
  const int left = GetSystemMetrics(SM_XVIRTUALSCREEN);
  const int top = GetSystemMetrics(SM_YVIRTUALSCREEN);
  const int width = GetSystemMetrics(SM_CXVIRTUALSCREEN);
  const int height = GetSystemMetrics(SM_CYVIRTUALSCREEN);
  Bitmap bitmap(CreateCompatibleBitmap(screen.Get(), width, height));
  if (bitmap == nullptr) return nullptr;
  const Selected selected(memory.Get(), bitmap.get());
  const BOOL copied =
      BitBlt(memory.Get(), 0, 0, width, height, screen.Get(), left, top, SRCCOPY | CAPTUREBLT);
  return copied ? std::move(bitmap) : nullptr;
}

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
  const Bitmap bitmap = CopyDesktop();
  if (bitmap == nullptr) return "The screen could not be copied.";
  const GdiPlus gdiPlus;
  return gdiPlus.SavePng(bitmap.get(), path) ? "" : "The picture could not be written.";
}
