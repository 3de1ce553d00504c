#include "job/windows_taskbar_button.h"

void WindowsTaskbarButton::Create(HWND window) {
  m_hWnd = window;
  ITaskbarList3* taskbar = nullptr;
  if (FAILED(CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3,
                              reinterpret_cast<void**>(&taskbar)))) {
    return;
  }
  m_pTaskbar.reset(taskbar);
  if (FAILED(taskbar->HrInit())) Release();
}

void WindowsTaskbarButton::ShowPercent(int percent) {
  if (m_pTaskbar) m_pTaskbar->SetProgressValue(m_hWnd, static_cast<ULONGLONG>(percent), 100);
}

void WindowsTaskbarButton::SetState(TBPFLAG state) {
  if (m_pTaskbar) m_pTaskbar->SetProgressState(m_hWnd, state);
}
