#include "mfc/browse_glyph.h"

#include "mfc/control_drawing.h"

namespace mfc_detail {

namespace {

constexpr COLORREF kFolderFill = RGB(255, 217, 102);
constexpr COLORREF kFolderEdge = RGB(166, 120, 20);

// At 96 dpi.
constexpr int kFolderWidth = 14;
constexpr int kFolderHeight = 11;
constexpr int kTabWidth = 6;
constexpr int kTabHeight = 2;
constexpr int kDot = 2;
constexpr int kDotStep = 4;

COLORREF Ink(bool disabled) {
  return GetSysColor(disabled ? COLOR_GRAYTEXT : COLOR_BTNTEXT);
}

}  // namespace

// A body with a tab on its upper left corner; both framed, their common edge open.
void DrawFolderGlyph(HDC context, const RECT& rect, bool disabled, UINT dpi) {
  const bool plain = disabled || IsHighContrast();
  const COLORREF edge = plain ? Ink(disabled) : kFolderEdge;
  const COLORREF fill = plain ? GetSysColor(COLOR_BTNFACE) : kFolderFill;
  const int line = Scale(1, dpi);
  const int left = (rect.left + rect.right - Scale(kFolderWidth, dpi)) / 2;
  const int top = (rect.top + rect.bottom - Scale(kFolderHeight, dpi)) / 2;
  const RECT body = {left, top + Scale(kTabHeight, dpi), left + Scale(kFolderWidth, dpi),
                     top + Scale(kFolderHeight, dpi)};
  const RECT tab = {left, top, left + Scale(kTabWidth, dpi), body.top + line};
  FillWith(context, body, fill);
  FrameWith(context, body, edge, line);
  FillWith(context, tab, edge);
  FillWith(context, RECT{tab.left + line, tab.top + line, tab.right - line, tab.bottom}, fill);
}

void DrawDotsGlyph(HDC context, const RECT& rect, bool disabled, UINT dpi) {
  const int dot = Scale(kDot, dpi);
  const int step = Scale(kDotStep, dpi);
  const int left = (rect.left + rect.right - 2 * step - dot) / 2;
  const int top = (rect.top + rect.bottom - dot) / 2 + Scale(2, dpi);
  for (int i = 0; i < 3; ++i) {
    const int x = left + i * step;
    FillWith(context, RECT{x, top, x + dot, top + dot}, Ink(disabled));
  }
}

}  // namespace mfc_detail
