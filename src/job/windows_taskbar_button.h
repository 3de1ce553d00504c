// The program's button on the taskbar. Does nothing where the shell has none. User-interface thread, COM
// initialised.
#ifndef MOSAICON_JOB_WINDOWS_TASKBAR_BUTTON_H_
#define MOSAICON_JOB_WINDOWS_TASKBAR_BUTTON_H_

#include <windows.h>
// After windows.h.
#include <shobjidl.h>

#include "job/taskbar_progress.h"
#include "mfc/com_pointer.h"

class WindowsTaskbarButton : public TaskbarButton {
 public:
  // window is the program's main window.
  void Create(HWND window);
  // Before COM goes, at the latest when the window does.
  void Release() { m_pTaskbar.reset(); }

  void ShowNothing() override { SetState(TBPF_NOPROGRESS); }
  void ShowActivity() override { SetState(TBPF_INDETERMINATE); }
  void ShowPercent(int percent) override;

 private:
  void SetState(TBPFLAG state);

  afx::ComPointer<ITaskbarList3> m_pTaskbar;
  HWND m_hWnd = nullptr;
};

#endif  // MOSAICON_JOB_WINDOWS_TASKBAR_BUTTON_H_
