// What the controls of this folder that draw themselves have in common: owners of drawing objects, and
// themed drawing with the classic look where there is no theme.
//
// User-interface thread. Sizes are in pixels.
#ifndef MOSAICON_MFC_CONTROL_DRAWING_H_
#define MOSAICON_MFC_CONTROL_DRAWING_H_

#include <windows.h>
// After windows.h.
#include <uxtheme.h>

#include <memory>
#include <type_traits>

#include "mfc/dpi.h"

namespace mfc_detail {

struct GdiDeleter {
  void operator()(void* object) const { DeleteObject(object); }
};
template <class Handle>
using GdiObject = std::unique_ptr<std::remove_pointer_t<Handle>, GdiDeleter>;
using Brush = GdiObject<HBRUSH>;
using Pen = GdiObject<HPEN>;
using Font = GdiObject<HFONT>;
using Bitmap = GdiObject<HBITMAP>;

// An object in a device context, until the end of the block.
class Selected {
 public:
  Selected(HDC context, HGDIOBJ object) : m_hContext(context), m_hBefore(SelectObject(context, object)) {}
  ~Selected() { SelectObject(m_hContext, m_hBefore); }
  Selected(const Selected&) = delete;
  Selected& operator=(const Selected&) = delete;

 private:
  const HDC m_hContext;
  const HGDIOBJ m_hBefore;
};

// Of a whole window with its frame, of a client area, or (window null) of the screen.
class WindowContext {
 public:
  enum class Area { kClient, kWithFrame };
  WindowContext(HWND window, Area area)
      : m_hWindow(window), m_hContext(area == Area::kClient ? GetDC(window) : GetWindowDC(window)) {}
  ~WindowContext() { ReleaseDC(m_hWindow, m_hContext); }
  WindowContext(const WindowContext&) = delete;
  WindowContext& operator=(const WindowContext&) = delete;

  HDC Get() const { return m_hContext; }

 private:
  const HWND m_hWindow;
  const HDC m_hContext;
};

using afx::GetWindowDpi;
using afx::kDpiChangedAfterParent;
using afx::Scale;

struct ButtonLook {
  bool bDisabled = false;
  bool bPressed = false;
  bool bHot = false;
};

// The face of a push button: the theme's, or the classic one. Returns the rectangle for its content.
RECT DrawButtonFace(HWND window, HDC context, RECT rect, ButtonLook look);
// A triangle that points down, in the middle of rect.
void DrawDropDownArrow(HDC context, const RECT& rect, COLORREF color, UINT dpi);
void FillWith(HDC context, const RECT& rect, COLORREF color);
void FrameWith(HDC context, const RECT& rect, COLORREF color, int thickness);
// The user has asked for few colours with much contrast.
bool IsHighContrast();

}  // namespace mfc_detail

#endif  // MOSAICON_MFC_CONTROL_DRAWING_H_
