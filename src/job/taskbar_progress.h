// What the program's taskbar button shows of a job: nothing while none runs, whatever the bar in the window
// is set to. Portable; user-interface thread.
#ifndef MOSAICON_JOB_TASKBAR_PROGRESS_H_
#define MOSAICON_JOB_TASKBAR_PROGRESS_H_

class TaskbarButton {
 public:
  virtual ~TaskbarButton() = default;
  virtual void ShowNothing() = 0;
  // Something is going on, and nobody knows how far it is.
  virtual void ShowActivity() = 0;
  virtual void ShowPercent(int percent) = 0;
};

class TaskbarProgress {
 public:
  // button must outlive this object.
  explicit TaskbarProgress(TaskbarButton& button) : m_button(button) {}

  // A job runs from here on; nothing is known of its progress yet.
  void Begin();
  // How far the bar in the window is.
  void SetPercent(int percent);
  void End();

 private:
  TaskbarButton& m_button;
  bool m_bJobRunning = false;
};

#endif  // MOSAICON_JOB_TASKBAR_PROGRESS_H_
