#include "job/process_report_dlg.h"

#include <utility>

#include "resources/resource.h"

CProcessReportDlg::CProcessReportDlg(std::string strWorkTime, std::string strLog, std::string strCopyHint,
                                     std::string strWebHint, CWnd* parent)
    : CDialog(IDD_PROCESS_REPORT, parent),
      m_strWorkTime(std::move(strWorkTime)),
      m_strLog(std::move(strLog)),
      m_strCopyHint(std::move(strCopyHint)),
      m_strWebHint(std::move(strWebHint)) {}

BOOL CProcessReportDlg::OnInitDialog() {
  CDialog::OnInitDialog();
  SetDlgItemText(IDC_COPY_HINT, m_strCopyHint);
  SetDlgItemText(IDC_WEB_HINT, m_strWebHint);
  SetDlgItemText(IDC_WORK_TIME, "Total work time: " + m_strWorkTime);
  // The log of a folder with thousands of orthophotos is longer than what a person may type.
  SendDlgItemMessageA(m_hWnd, IDC_LOG, EM_SETLIMITTEXT, 0, 0);
  SetDlgItemText(IDC_LOG, m_strLog);
  return TRUE;
}
