// The progress bar of a job, which the taskbar button follows. Positions are percent.
#ifndef MOSAICON_JOB_JOB_PROGRESS_H_
#define MOSAICON_JOB_JOB_PROGRESS_H_

#include "job/taskbar_progress.h"
#include "progress/progress_control.h"

class CJobProgress : public TProgressTimeToComplete {
 public:
  // taskbar must outlive the bar.
  explicit CJobProgress(TaskbarProgress& taskbar) : m_taskbar(taskbar) {}

  // The owner closes: what arrives from here on must not run its handlers any more.
  void StopPumping() { m_bPumpingStopped = true; }

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

 private:
  TaskbarProgress& m_taskbar;
  bool m_bPumpingStopped = false;
};

#endif  // MOSAICON_JOB_JOB_PROGRESS_H_
