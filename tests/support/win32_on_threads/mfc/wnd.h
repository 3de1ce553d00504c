// A window that belongs to the test's thread.
#ifndef MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_WND_H_
#define MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_WND_H_

#include <windows.h>

#include <vector>

struct ThreadWindow {
  std::vector<int> positions;  // of each PBM_SETPOS
};

class CWnd {
 public:
  HWND GetSafeHwnd() { return &m_window; }
  const std::vector<int>& Positions() const { return m_window.positions; }

 private:
  ThreadWindow m_window;
};

#endif  // MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_WND_H_
