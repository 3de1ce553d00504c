#include "mfc/tool_tip_ctrl.h"

// After windows.h.
#include <commctrl.h>

#include "mfc/app.h"
#include "mfc/control_drawing.h"

namespace {

constexpr int kMaxWidth = 360;           // at 96 dpi
constexpr int kLongestShowTime = 32767;  // ms; the most that the control takes

}  // namespace

BEGIN_MESSAGE_MAP(CToolTipCtrl, CWnd)
ON_MESSAGE(WM_DPICHANGED, CToolTipCtrl::OnDpiChanged)
END_MESSAGE_MAP()

CToolTipCtrl::~CToolTipCtrl() {
  if (m_hWnd != nullptr) ::DestroyWindow(m_hWnd);
}

BOOL CToolTipCtrl::Create(CWnd* parent) {
  if (m_hWnd != nullptr) return FALSE;
  INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_BAR_CLASSES};
  InitCommonControlsEx(&classes);
  // An ampersand in a tip is an ampersand.
  const HWND window =
      CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX,
                      CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, parent->GetSafeHwnd(),
                      nullptr, AfxGetInstanceHandle(), nullptr);
  if (window == nullptr) return FALSE;
  if (!SubclassWindow(window)) {
    ::DestroyWindow(window);
    return FALSE;
  }
  SendMessage(TTM_SETDELAYTIME, TTDT_AUTOPOP, kLongestShowTime);
  WrapLines();
  return TRUE;
}

BOOL CToolTipCtrl::AddTool(CWnd* window, const std::string& text) {
  return AddTool(window->GetSafeHwnd(), text);
}

BOOL CToolTipCtrl::AddTool(HWND window, const std::string& text) {
  if (m_hWnd == nullptr || !IsWindow(window)) return FALSE;
  std::string copy = text;
  TTTOOLINFOA tool = {};
  // The size that the control knows in all its versions.
  tool.cbSize = TTTOOLINFOA_V2_SIZE;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = GetParent(window);
  tool.uId = reinterpret_cast<UINT_PTR>(window);
  // Adding a window twice would keep both texts, and show the first.
  SendMessage(TTM_DELTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
  tool.lpszText = copy.data();
  return SendMessage(TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool)) != 0;
}

LRESULT CToolTipCtrl::OnDpiChanged(WPARAM, LPARAM) {
  WrapLines();
  return Default();
}

// A maximum width is also what makes the control wrap at all.
void CToolTipCtrl::WrapLines() {
  SendMessage(TTM_SETMAXTIPWIDTH, 0, mfc_detail::Scale(kMaxWidth, mfc_detail::GetWindowDpi(m_hWnd)));
}
