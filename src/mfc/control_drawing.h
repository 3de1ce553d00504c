// What the controls of this folder that draw themselves have in common: themed drawing with the classic look
// where there is no theme.
//
// User-interface thread. Sizes are in pixels.
#ifndef MOSAICON_MFC_CONTROL_DRAWING_H_
#define MOSAICON_MFC_CONTROL_DRAWING_H_

#include <windows.h>
// After windows.h.
#include <uxtheme.h>

#include "handles/drawing_handles.h"
#include "mfc/dpi.h"

namespace mfc_detail {

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
