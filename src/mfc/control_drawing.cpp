#include "mfc/control_drawing.h"

// After windows.h.
#include <vssym32.h>

#include <memory>

namespace mfc_detail {

namespace {

using Brush = GdiObject<HBRUSH>;

struct ThemeDeleter {
  void operator()(void* theme) const { CloseThemeData(theme); }
};
using Theme = std::unique_ptr<void, ThemeDeleter>;

int ThemeState(ButtonLook look) {
  if (look.bDisabled) return PBS_DISABLED;
  if (look.bPressed) return PBS_PRESSED;
  return look.bHot ? PBS_HOT : PBS_NORMAL;
}

RECT DrawClassicFace(HDC context, RECT rect, ButtonLook look) {
  UINT state = DFCS_BUTTONPUSH;
  if (look.bDisabled) state |= DFCS_INACTIVE;
  if (look.bPressed) state |= DFCS_PUSHED;
  if (look.bHot) state |= DFCS_HOT;
  DrawFrameControl(context, &rect, DFC_BUTTON, state);
  InflateRect(&rect, -2, -2);
  if (look.bPressed) OffsetRect(&rect, 1, 1);
  return rect;
}

}  // namespace

RECT DrawButtonFace(HWND window, HDC context, RECT rect, ButtonLook look) {
  const Theme theme(OpenThemeData(window, L"Button"));
  if (!theme) return DrawClassicFace(context, rect, look);
  const int state = ThemeState(look);
  if (IsThemeBackgroundPartiallyTransparent(theme.get(), BP_PUSHBUTTON, state))
    DrawThemeParentBackground(window, context, &rect);
  DrawThemeBackground(theme.get(), context, BP_PUSHBUTTON, state, &rect, nullptr);
  RECT content = rect;
  GetThemeBackgroundContentRect(theme.get(), context, BP_PUSHBUTTON, state, &rect, &content);
  return content;
}

void DrawDropDownArrow(HDC context, const RECT& rect, COLORREF color, UINT dpi) {
  const int height = Scale(4, dpi);
  const int x = (rect.left + rect.right) / 2;
  const int y = (rect.top + rect.bottom - height) / 2;
  // Row by row: polygons are lopsided at these sizes.
  for (int row = 0; row < height; ++row) {
    const int half = height - 1 - row;
    FillWith(context, RECT{x - half, y + row, x + half + 1, y + row + 1}, color);
  }
}

void FillWith(HDC context, const RECT& rect, COLORREF color) {
  const Brush brush(CreateSolidBrush(color));
  FillRect(context, &rect, brush.get());
}

void FrameWith(HDC context, const RECT& rect, COLORREF color, int thickness) {
  const Brush brush(CreateSolidBrush(color));
  RECT frame = rect;
  for (int i = 0; i < thickness; ++i) {
    FrameRect(context, &frame, brush.get());
    InflateRect(&frame, -1, -1);
  }
}

bool IsHighContrast() {
  HIGHCONTRASTA contrast = {};
  contrast.cbSize = sizeof(contrast);
  return SystemParametersInfoA(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0) &&
         (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

}  // namespace mfc_detail
