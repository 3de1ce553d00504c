#include "job/edit_browse_ex.h"

const UINT g_nOrthoPathMessage = RegisterWindowMessageA("orthoPath");

void CMFCEditBrowseCtrlEx::OnBrowse() {
  CMFCEditBrowseCtrl::OnBrowse();
  // The window may have been closed while the user was browsing.
  if (m_hWnd == nullptr || !IsPathChosen()) return;
  const std::string path = GetWindowText();
  ::SendMessageA(GetParent(m_hWnd), g_nOrthoPathMessage, 0, reinterpret_cast<LPARAM>(path.c_str()));
}
