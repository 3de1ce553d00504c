// The framework's CWnd: a C++ object for a window. Does not own the window unless a derived class
// says so. One thread, the window's.
#ifndef MOSAICON_MFC_WND_H_
#define MOSAICON_MFC_WND_H_

#include <windows.h>

class CWnd {
 public:
  CWnd() = default;
  virtual ~CWnd() = default;
  CWnd(const CWnd&) = delete;
  CWnd& operator=(const CWnd&) = delete;

  // Null when there is no window.
  HWND GetSafeHwnd() const { return m_hWnd; }
  BOOL Attach(HWND window);
  HWND Detach();

  HWND m_hWnd = nullptr;
};

#endif  // MOSAICON_MFC_WND_H_
