#include "mfc/color_button.h"

#include <algorithm>

#include "mfc/color_palette.h"
#include "mfc/control_drawing.h"

using namespace mfc_detail;

namespace {

// At 96 dpi.
constexpr int kArrowWidth = 14;
constexpr int kFocusMargin = 1;
constexpr int kSwatchMargin = 2;  // to the focus rectangle

// A label as it is read: "&Background:" is "Background".
std::string WithoutMarks(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), '&'), text.end());
  while (!text.empty() && (text.back() == ':' || text.back() == ' ')) text.pop_back();
  return text;
}

std::string LabelBefore(HWND window) {
  const HWND before = GetWindow(window, GW_HWNDPREV);
  char className[16] = "";
  if (before == nullptr || GetClassNameA(before, className, sizeof(className)) == 0) return "";
  if (lstrcmpiA(className, "Static") != 0) return "";
  CWnd label;
  label.Attach(before);
  return label.GetWindowText();
}

// A third of color in what is around it.
COLORREF Faded(COLORREF color, COLORREF around) {
  const auto mix = [](int a, int b) { return static_cast<BYTE>((a + 2 * b) / 3); };
  return RGB(mix(GetRValue(color), GetRValue(around)), mix(GetGValue(color), GetGValue(around)),
             mix(GetBValue(color), GetBValue(around)));
}

void DropPending(HWND window, UINT message) {
  MSG dropped;
  PeekMessageA(&dropped, window, message, message, PM_REMOVE);
}

}  // namespace

BEGIN_MESSAGE_MAP(CMFCColorButton, CWnd)
ON_MESSAGE(WM_LBUTTONDOWN, CMFCColorButton::OnLButtonDown)
ON_MESSAGE(WM_LBUTTONDBLCLK, CMFCColorButton::OnLButtonDown)
ON_MESSAGE(WM_GETDLGCODE, CMFCColorButton::OnGetDlgCode)
ON_MESSAGE(WM_KEYDOWN, CMFCColorButton::OnKeyDown)
ON_MESSAGE(WM_KEYUP, CMFCColorButton::OnKeyUp)
ON_MESSAGE(WM_SYSKEYDOWN, CMFCColorButton::OnSysKeyDown)
END_MESSAGE_MAP()

void CMFCColorButton::PreSubclassWindow() {
  m_strLabel = WithoutMarks(GetWindowText());
  if (m_strLabel.empty()) m_strLabel = WithoutMarks(LabelBefore(m_hWnd));
  TellName();
}

void CMFCColorButton::SetColor(COLORREF color) {
  m_Color = color;
  if (m_hWnd == nullptr) return;
  TellName();
  InvalidateRect(m_hWnd, nullptr, TRUE);
}

void CMFCColorButton::TellName() {
  const std::string color = DescribeColor(m_Color);
  SetWindowText(m_strLabel.empty() ? color : m_strLabel + ": " + color);
}

void CMFCColorButton::DrawItem(const DRAWITEMSTRUCT& item) {
  const HDC context = item.hDC;
  const UINT dpi = GetWindowDpi(m_hWnd);
  ButtonLook look;
  look.bDisabled = (item.itemState & ODS_DISABLED) != 0;
  look.bPressed = m_bDropped || (item.itemState & ODS_SELECTED) != 0;
  RECT content = DrawButtonFace(m_hWnd, context, item.rcItem, look);
  InflateRect(&content, -Scale(kFocusMargin, dpi), -Scale(kFocusMargin, dpi));
  if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0) {
    SetTextColor(context, GetSysColor(COLOR_BTNTEXT));
    SetBkColor(context, GetSysColor(COLOR_BTNFACE));
    DrawFocusRect(context, &content);
  }
  InflateRect(&content, -Scale(kSwatchMargin, dpi), -Scale(kSwatchMargin, dpi));

  const COLORREF ink = GetSysColor(look.bDisabled ? COLOR_GRAYTEXT : COLOR_BTNTEXT);
  RECT arrow = content;
  arrow.left = std::max(content.left, content.right - Scale(kArrowWidth, dpi));
  DrawDropDownArrow(context, arrow, ink, dpi);
  RECT swatch = content;
  swatch.right = arrow.left;
  FillWith(context, swatch, look.bDisabled ? Faded(m_Color, GetSysColor(COLOR_BTNFACE)) : m_Color);
  FrameWith(context, swatch, ink, Scale(1, dpi));
}

// Drops like a combo box, when the mouse goes down.
LRESULT CMFCColorButton::OnLButtonDown(WPARAM, LPARAM) {
  SetFocus(m_hWnd);
  DropPalette();
  return 0;
}

// A dialog gives Enter to its default button unless the control asks for it.
LRESULT CMFCColorButton::OnGetDlgCode(WPARAM, LPARAM lParam) {
  const auto* message = reinterpret_cast<const MSG*>(lParam);
  const bool enter = message != nullptr && message->message == WM_KEYDOWN && message->wParam == VK_RETURN;
  return Default() | (enter ? DLGC_WANTMESSAGE : 0);
}

LRESULT CMFCColorButton::OnKeyDown(WPARAM wParam, LPARAM) {
  if (wParam != VK_SPACE && wParam != VK_RETURN && wParam != VK_F4) return Default();
  DropPalette();
  return 0;
}

// The button would take the end of Space for a click.
LRESULT CMFCColorButton::OnKeyUp(WPARAM wParam, LPARAM) {
  return wParam == VK_SPACE ? 0 : Default();
}

LRESULT CMFCColorButton::OnSysKeyDown(WPARAM wParam, LPARAM) {
  if (wParam != VK_DOWN) return Default();
  DropPalette();
  return 0;
}

void CMFCColorButton::DropPalette() {
  if (m_bDropped || !IsWindowEnabled(m_hWnd)) return;
  const HWND window = m_hWnd;
  COLORREF color = m_Color;
  m_bDropped = true;
  InvalidateRect(window, nullptr, TRUE);
  // The palette would take the character of the key that drops it for a choice.
  DropPending(window, WM_CHAR);
  const BOOL chosen = ChooseFromPalette(window, m_strOtherLabel, &color);
  m_bDropped = false;
  // The window may have been destroyed or disabled meanwhile.
  if (m_hWnd != window) return;
  InvalidateRect(window, nullptr, TRUE);
  // A click on the button closes the palette, and must not drop it again.
  DropPending(window, WM_LBUTTONDOWN);
  DropPending(window, WM_LBUTTONDBLCLK);
  if (!chosen || color == m_Color || !IsWindowEnabled(window)) return;
  SetColor(color);
  const WPARAM notification = MAKEWPARAM(GetDlgCtrlID(window), BN_CLICKED);
  ::SendMessageA(GetParent(window), WM_COMMAND, notification, reinterpret_cast<LPARAM>(window));
}
