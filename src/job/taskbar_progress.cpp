#include "job/taskbar_progress.h"

#include <utility>

void TaskbarProgress::Release() {
  if (ITaskbarList3* taskbar = std::exchange(m_pTaskbar, nullptr)) taskbar->Release();
}

void TaskbarProgress::Create(HWND window) {
  if (m_pTaskbar != nullptr) return;
  m_hWnd = window;
  ITaskbarList3* taskbar = nullptr;
  if (FAILED(CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3,
                              reinterpret_cast<void**>(&taskbar)))) {
    return;
  }
  m_pTaskbar = taskbar;
  if (FAILED(taskbar->HrInit())) Release();
}

void TaskbarProgress::ShowBusy() {
  SetState(TBPF_INDETERMINATE);
}

void TaskbarProgress::ShowPercent(int percent) {
  if (m_pTaskbar == nullptr) return;
  if (percent <= 0) return ShowBusy();
  m_pTaskbar->SetProgressValue(m_hWnd, static_cast<ULONGLONG>(percent), 100);
}

void TaskbarProgress::Clear() {
  SetState(TBPF_NOPROGRESS);
}

void TaskbarProgress::SetState(TBPFLAG state) {
  if (m_pTaskbar != nullptr) m_pTaskbar->SetProgressState(m_hWnd, state);
}
