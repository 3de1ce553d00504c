// A window that collects the positions that a tool item sends to its progress bar. For tests.
#ifndef MOSAICON_JOB_TESTING_PROGRESS_WINDOW_H_
#define MOSAICON_JOB_TESTING_PROGRESS_WINDOW_H_

#include <windows.h>
// After windows.h.
#include <commctrl.h>

#include <vector>

#include "mfc/wnd.h"

class ProgressWindow : public CWnd {
 public:
  ProgressWindow() {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "ProgressWindowTest";
    RegisterClassA(&windowClass);
    Attach(CreateWindowExA(0, "ProgressWindowTest", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                           windowClass.hInstance, nullptr));
    SetWindowLongPtrA(m_hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  ~ProgressWindow() override { DestroyWindow(Detach()); }

  std::vector<int> positions;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == PBM_SETPOS) {
      auto* self = reinterpret_cast<ProgressWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
      self->positions.push_back(static_cast<int>(wParam));
      return 0;
    }
    return ::DefWindowProcA(window, message, wParam, lParam);
  }
};

#endif  // MOSAICON_JOB_TESTING_PROGRESS_WINDOW_H_
