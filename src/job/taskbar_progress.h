// The progress of a job on the program's taskbar button. Does nothing where the shell has none.
// User-interface thread, COM initialised.
#ifndef MOSAICON_JOB_TASKBAR_PROGRESS_H_
#define MOSAICON_JOB_TASKBAR_PROGRESS_H_

#include <windows.h>
// After windows.h.
#include <shobjidl.h>

class TaskbarProgress {
 public:
  TaskbarProgress() = default;
  ~TaskbarProgress() { Release(); }
  TaskbarProgress(const TaskbarProgress&) = delete;
  TaskbarProgress& operator=(const TaskbarProgress&) = delete;

  // window is the program's main window.
  void Create(HWND window);
  // Before COM goes, at the latest when the window does.
  void Release();
  // A job runs, and nothing is known of its progress yet.
  void ShowBusy();
  void ShowPercent(int percent);
  void Clear();

 private:
  void SetState(TBPFLAG state);

  ITaskbarList3* m_pTaskbar = nullptr;
  HWND m_hWnd = nullptr;
};

#endif  // MOSAICON_JOB_TASKBAR_PROGRESS_H_
