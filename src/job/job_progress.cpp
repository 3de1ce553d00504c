#include "job/job_progress.h"

// After windows.h.
#include <commctrl.h>

LRESULT CJobProgress::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  // Past the class between, which pumps. NOLINTNEXTLINE(bugprone-parent-virtual-call)
  if (m_bPumpingStopped) return CProgressCtrl::WindowProc(message, wParam, lParam);
  const LRESULT result = TProgressTimeToComplete::WindowProc(message, wParam, lParam);
  if (message == PBM_SETPOS && m_hWnd != nullptr) m_taskbar.SetPercent(static_cast<int>(wParam));
  return result;
}
