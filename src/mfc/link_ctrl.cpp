#include "mfc/link_ctrl.h"

#include <initializer_list>

#include "mfc/control_drawing.h"

using namespace mfc_detail;

namespace {

using Font = GdiObject<HFONT>;

constexpr int kMargin = 2;  // around the text, for the focus rectangle; at 96 dpi

// Anything else could start a program.
bool IsWebAddress(const std::string& url) {
  for (const char* scheme : {"http://", "https://", "mailto:"}) {
    const int length = lstrlenA(scheme);
    if (CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, url.data(),
                       static_cast<int>(url.size()) < length ? static_cast<int>(url.size()) : length, scheme,
                       length) == CSTR_EQUAL)
      return true;
  }
  return false;
}

Font UnderlinedFont(HWND window) {
  auto font = reinterpret_cast<HGDIOBJ>(SendMessageA(window, WM_GETFONT, 0, 0));
  if (font == nullptr) font = GetStockObject(DEFAULT_GUI_FONT);
  LOGFONTA logical = {};
  GetObjectA(font, sizeof(logical), &logical);
  logical.lfUnderline = TRUE;
  return Font(CreateFontIndirectA(&logical));
}

int Brightness(COLORREF color) {
  return (3 * GetRValue(color) + 6 * GetGValue(color) + GetBValue(color)) / 10;
}

// The system's colour for links; some themes have one that cannot be read on a dialog.
COLORREF LinkColor() {
  constexpr int kReadable = 64;  // of 255
  const COLORREF link = GetSysColor(COLOR_HOTLIGHT);
  const int contrast = Brightness(link) - Brightness(GetSysColor(COLOR_3DFACE));
  return contrast < -kReadable || contrast > kReadable ? link : GetSysColor(COLOR_BTNTEXT);
}

// As a static control would have it, since the link stands among these.
void FillBackground(HWND window, HDC context, const RECT& rect) {
  const auto brush = reinterpret_cast<HBRUSH>(SendMessageA(GetParent(window), WM_CTLCOLORSTATIC,
                                                           reinterpret_cast<WPARAM>(context),
                                                           reinterpret_cast<LPARAM>(window)));
  FillRect(context, &rect, brush != nullptr ? brush : GetSysColorBrush(COLOR_3DFACE));
}

}  // namespace

BEGIN_MESSAGE_MAP(CMFCLinkCtrl, CWnd)
ON_MESSAGE(WM_SETCURSOR, CMFCLinkCtrl::OnSetCursor)
ON_MESSAGE(WM_GETDLGCODE, CMFCLinkCtrl::OnGetDlgCode)
ON_MESSAGE(WM_KEYDOWN, CMFCLinkCtrl::OnKeyDown)
ON_MESSAGE(WM_KEYUP, CMFCLinkCtrl::OnRelease)
ON_MESSAGE(WM_LBUTTONUP, CMFCLinkCtrl::OnRelease)
END_MESSAGE_MAP()

void CMFCLinkCtrl::SetTooltip(const std::string& text) {
  if (m_pToolTip == nullptr || m_pToolTip->GetSafeHwnd() == nullptr) {
    m_pToolTip = std::make_unique<CToolTipCtrl>();
    if (!m_pToolTip->Create(this)) return;
  }
  m_pToolTip->AddTool(this, text);
}

SIZE CMFCLinkCtrl::SizeToContent() {
  const WindowContext context(m_hWnd);
  const Font font = UnderlinedFont(m_hWnd);
  const Selected selected(context.Get(), font.get());
  RECT text = {};
  DrawTextA(context.Get(), GetWindowText().c_str(), -1, &text, DT_SINGLELINE | DT_CALCRECT);
  const int margin = Scale(kMargin, GetWindowDpi(m_hWnd));
  const SIZE size = {text.right + 2 * margin, text.bottom + 2 * margin};
  SetWindowPos(m_hWnd, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  return size;
}

void CMFCLinkCtrl::DrawItem(const DRAWITEMSTRUCT& item) {
  const HDC context = item.hDC;
  FillBackground(m_hWnd, context, item.rcItem);
  const Font font = UnderlinedFont(m_hWnd);
  const Selected selected(context, font.get());
  const bool disabled = (item.itemState & ODS_DISABLED) != 0;
  SetBkMode(context, TRANSPARENT);
  SetTextColor(context, disabled ? GetSysColor(COLOR_GRAYTEXT) : LinkColor());
  RECT text = item.rcItem;
  const int margin = Scale(kMargin, GetWindowDpi(m_hWnd));
  InflateRect(&text, -margin, -margin);
  const UINT prefix = (item.itemState & ODS_NOACCEL) != 0 ? DT_HIDEPREFIX : 0;
  DrawTextA(context, GetWindowText().c_str(), -1, &text,
            DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_END_ELLIPSIS | prefix);
  if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0) {
    SetTextColor(context, GetSysColor(COLOR_BTNTEXT));
    DrawFocusRect(context, &item.rcItem);
  }
}

LRESULT CMFCLinkCtrl::OnSetCursor(WPARAM, LPARAM lParam) {
  if (LOWORD(lParam) != HTCLIENT) return Default();
  SetCursor(LoadCursor(nullptr, IDC_HAND));
  return TRUE;
}

// A dialog gives Enter to its default button unless the control asks for it.
LRESULT CMFCLinkCtrl::OnGetDlgCode(WPARAM, LPARAM lParam) {
  const auto* message = reinterpret_cast<const MSG*>(lParam);
  const bool enter = message != nullptr && message->message == WM_KEYDOWN && message->wParam == VK_RETURN;
  return Default() | (enter ? DLGC_WANTMESSAGE : 0);
}

LRESULT CMFCLinkCtrl::OnKeyDown(WPARAM wParam, LPARAM lParam) {
  if (wParam != VK_RETURN) return Default();
  const bool repeated = (HIWORD(lParam) & KF_REPEAT) != 0;
  if (!repeated) SendMessage(BM_CLICK);
  return 0;
}

// The button decides what a click is: it is let go while it looks pressed.
LRESULT CMFCLinkCtrl::OnRelease(WPARAM, LPARAM) {
  const bool pressed = (SendMessage(BM_GETSTATE) & BST_PUSHED) != 0;
  const LRESULT result = Default();
  if (pressed && m_hWnd != nullptr && (SendMessage(BM_GETSTATE) & BST_PUSHED) == 0) Open();
  return result;
}

void CMFCLinkCtrl::Open() {
  const std::string url = m_strURL.empty() ? GetWindowText() : m_strURL;
  if (IsWebAddress(url) && OpenURL(url)) return;
  MessageBox("This address could not be opened:\n\n" + url, MB_OK | MB_ICONEXCLAMATION);
}

BOOL CMFCLinkCtrl::OpenURL(const std::string& url) {
  const HINSTANCE result = ShellExecuteA(m_hWnd, "open", url.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
  // Above 32 is success; the type is a relic.
  return reinterpret_cast<INT_PTR>(result) > 32;
}
