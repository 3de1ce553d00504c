// The framework's hourglass: the cursor waits for as long as the object lives. Where messages are pumped
// meanwhile, the window that gets WM_SETCURSOR says so again with Restore. User-interface thread.
#ifndef MOSAICON_MFC_WAIT_CURSOR_H_
#define MOSAICON_MFC_WAIT_CURSOR_H_

#include <windows.h>

class CWaitCursor {
 public:
  CWaitCursor() : m_hPrevious(SetCursor(Hourglass())) {}
  ~CWaitCursor() { SetCursor(m_hPrevious); }
  CWaitCursor(const CWaitCursor&) = delete;
  CWaitCursor& operator=(const CWaitCursor&) = delete;

  void Restore() { SetCursor(Hourglass()); }

 private:
  static HCURSOR Hourglass() { return LoadCursor(nullptr, IDC_WAIT); }

  HCURSOR m_hPrevious;
};

#endif  // MOSAICON_MFC_WAIT_CURSOR_H_
