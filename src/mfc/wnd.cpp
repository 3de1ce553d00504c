#include "mfc/wnd.h"

#include <utility>

BOOL CWnd::Attach(HWND window) {
  if (window == nullptr || m_hWnd != nullptr) return FALSE;
  m_hWnd = window;
  return TRUE;
}

HWND CWnd::Detach() {
  return std::exchange(m_hWnd, nullptr);
}
