#include "mfc/wnd.h"

// After windows.h.
#include <commctrl.h>

#include <utility>
#include <vector>

#include "mfc/app.h"

namespace {

// One object per window, so one subclass id for all.
constexpr UINT_PTR kSubclassId = 1;
// Of the window: the address of the object that receives its messages.
constexpr char kObjectProperty[] = "CWnd";

}  // namespace

CWnd::~CWnd() {
  StopSubclassing();
}

// An attached window may send its messages to another object, and must go on doing so.
void CWnd::StopSubclassing() {
  if (m_hWnd == nullptr || FromHandlePermanent(m_hWnd) != this) return;
  RemovePropA(m_hWnd, kObjectProperty);
  RemoveWindowSubclass(m_hWnd, SubclassProcedure, kSubclassId);
}

BOOL CWnd::Attach(HWND window) {
  if (window == nullptr || m_hWnd != nullptr) return FALSE;
  m_hWnd = window;
  return TRUE;
}

HWND CWnd::Detach() {
  StopSubclassing();
  return std::exchange(m_hWnd, nullptr);
}

BOOL CWnd::SubclassWindow(HWND window) {
  if (FromHandlePermanent(window) != nullptr || !Attach(window)) return FALSE;
  if (!SetPropA(window, kObjectProperty, this) ||
      !SetWindowSubclass(window, SubclassProcedure, kSubclassId, reinterpret_cast<DWORD_PTR>(this))) {
    RemovePropA(window, kObjectProperty);
    m_hWnd = nullptr;
    return FALSE;
  }
  PreSubclassWindow();
  return TRUE;
}

BOOL CWnd::SubclassDlgItem(UINT id, CWnd* parent) {
  return SubclassWindow(parent->GetDlgItem(static_cast<int>(id)));
}

CWnd* CWnd::FromHandlePermanent(HWND window) {
  // The property of another program's window is an address over there.
  if (window == nullptr || GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId()) return nullptr;
  return static_cast<CWnd*>(GetPropA(window, kObjectProperty));
}

std::string CWnd::GetWindowText() const {
  std::vector<char> buffer(static_cast<size_t>(GetWindowTextLengthA(m_hWnd)) + 1);
  const int length = ::GetWindowTextA(m_hWnd, buffer.data(), static_cast<int>(buffer.size()));
  return std::string(buffer.data(), static_cast<size_t>(length));
}

void CWnd::SetWindowText(const std::string& text) {
  ::SetWindowTextA(m_hWnd, text.c_str());
}

std::string CWnd::GetDlgItemText(int id) const {
  CWnd item;
  item.Attach(GetDlgItem(id));
  return item.GetWindowText();
}

void CWnd::SetDlgItemText(int id, const std::string& text) {
  ::SetDlgItemTextA(m_hWnd, id, text.c_str());
}

void CWnd::CheckDlgButton(int id, bool checked) {
  ::CheckDlgButton(m_hWnd, id, checked ? BST_CHECKED : BST_UNCHECKED);
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) const {
  return ::SendMessageA(m_hWnd, message, wParam, lParam);
}

int CWnd::MessageBox(const std::string& text, UINT type) const {
  const int answer = ::MessageBoxA(m_hWnd, text.c_str(), AfxGetAppName().c_str(), type);
  return answer > 0 ? answer : 0;
}

const AFX_MSGMAP* CWnd::GetThisMessageMap() {
  static const AFX_MSGMAP_ENTRY entries[] = {{0, 0, 0, nullptr, nullptr}};
  static const AFX_MSGMAP messageMap = {nullptr, entries};
  return &messageMap;
}

const AFX_MSGMAP* CWnd::GetMessageMap() const {
  return GetThisMessageMap();
}

const AFX_MSGMAP_ENTRY* CWnd::FindHandler(UINT message, WPARAM wParam) const {
  const AFX_MSGMAP* map = GetMessageMap();
  while (map != nullptr) {
    for (const AFX_MSGMAP_ENTRY* entry = map->lpEntries; entry->pCall != nullptr; ++entry) {
      const UINT wanted = entry->pRegistered != nullptr ? *entry->pRegistered : entry->nMessage;
      // 0 is a registered message that has no number yet.
      if (wanted == 0 || message != wanted) continue;
      if (message == WM_COMMAND && (HIWORD(wParam) != entry->nCode || LOWORD(wParam) != entry->nID)) continue;
      return entry;
    }
    map = map->pfnGetBaseMap != nullptr ? map->pfnGetBaseMap() : nullptr;
  }
  return nullptr;
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  if (const AFX_MSGMAP_ENTRY* handler = FindHandler(message, wParam)) {
    return handler->pCall(*this, wParam, lParam);
  }
  if (message == WM_DRAWITEM) {
    const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    if (CWnd* control = FromHandlePermanent(item.hwndItem)) {
      control->DrawItem(item);
      return TRUE;
    }
  }
  return DefWindowProc(message, wParam, lParam);
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  return DefSubclassProc(m_hWnd, message, wParam, lParam);
}

LRESULT CWnd::Default() {
  return DefWindowProc(m_current.message, m_current.wParam, m_current.lParam);
}

LRESULT CALLBACK CWnd::SubclassProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                         UINT_PTR /*id*/, DWORD_PTR object) noexcept {
  CWnd& self = *reinterpret_cast<CWnd*>(object);
  if (message == WM_NCDESTROY) {
    const LRESULT result = DefSubclassProc(window, message, wParam, lParam);
    self.Detach();
    self.PostNcDestroy();
    return result;
  }
  // Handlers dispatch messages themselves: the outer one gets its own back. It may also destroy the
  // object's window, but not the object.
  const MSG outer = std::exchange(self.m_current, MSG{window, message, wParam, lParam, 0, {0, 0}});
  const LRESULT result = self.WindowProc(message, wParam, lParam);
  self.m_current = outer;
  return result;
}
