#include "job/process_report_dlg.h"

#include <algorithm>
#include <utility>

#include "resources/resource.h"

namespace {

// In dialog units: how much more room the template's controls for what is missing need.
constexpr LONG kProblemsHeight = 80;

// The texts of a folder with thousands of orthophotos are longer than what a person may type.
void SetLongText(CWnd& dialog, int id, const std::string& text) {
  SendDlgItemMessageA(dialog.GetSafeHwnd(), id, EM_SETLIMITTEXT, 0, 0);
  dialog.SetDlgItemText(id, text);
}

}  // namespace

CProcessReportDlg::CProcessReportDlg(std::string strWorkTime, std::string strLog, std::string strCopyHint,
                                     std::string strWebHint, CWnd* parent)
    : CDialog(IDD_PROCESS_REPORT, parent),
      m_strWorkTime(std::move(strWorkTime)),
      m_strLog(std::move(strLog)),
      m_strCopyHint(std::move(strCopyHint)),
      m_strWebHint(std::move(strWebHint)) {}

void CProcessReportDlg::SetProblems(std::string strCount, std::string strProblems) {
  m_strProblemCount = std::move(strCount);
  m_strProblems = std::move(strProblems);
}

BOOL CProcessReportDlg::OnInitDialog() {
  CDialog::OnInitDialog();
  SetDlgItemText(IDC_COPY_HINT, m_strCopyHint);
  SetDlgItemText(IDC_WEB_HINT, m_strWebHint);
  SetDlgItemText(IDC_WORK_TIME, "Total work time: " + m_strWorkTime);
  SetLongText(*this, IDC_LOG, m_strLog);
  if (!m_strProblemCount.empty()) ShowProblems();
  return TRUE;
}

void CProcessReportDlg::ShowProblems() {
  SetDlgItemText(IDC_PROBLEM_COUNT, m_strProblemCount);
  SetLongText(*this, IDC_PROBLEMS, m_strProblems);
  for (const int id : {IDC_PROBLEM_COUNT, IDC_PROBLEMS}) ShowWindow(GetDlgItem(id), SW_SHOWNA);
  RECT rect = {0, 0, 0, kProblemsHeight};
  MapDialogRect(m_hWnd, &rect);
  GrowBy(rect.bottom);
}

// In pixels, up and down alike, but not out of the screen; the button stays at the bottom.
void CProcessReportDlg::GrowBy(int height) {
  const HWND button = GetDlgItem(IDOK);
  RECT rect;
  GetWindowRect(button, &rect);
  MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT*>(&rect), 2);
  SetWindowPos(button, nullptr, rect.left, rect.top + height, 0, 0,
               SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);

  GetWindowRect(m_hWnd, &rect);
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfoA(MonitorFromWindow(m_hWnd, MONITOR_DEFAULTTONEAREST), &monitor);
  const LONG grown = rect.bottom - rect.top + height;
  const LONG lowestTop = std::max(monitor.rcWork.top, monitor.rcWork.bottom - grown);
  const LONG top = std::clamp(rect.top - height / 2, monitor.rcWork.top, lowestTop);
  SetWindowPos(m_hWnd, nullptr, rect.left, top, rect.right - rect.left, grown, SWP_NOZORDER | SWP_NOACTIVATE);
}
