#include "job/taskbar_progress.h"

void TaskbarProgress::Begin() {
  m_bJobRunning = true;
  m_button.ShowActivity();
}

void TaskbarProgress::SetPercent(int percent) {
  if (!m_bJobRunning) return;
  if (percent > 0) {
    m_button.ShowPercent(percent);
  } else {
    m_button.ShowActivity();
  }
}

void TaskbarProgress::End() {
  m_bJobRunning = false;
  m_button.ShowNothing();
}
