// The main dialog as the host of a job: what the driver shows, asks and locks.
#include "job/mosaicon_dlg.h"

// After windows.h.
#include <commctrl.h>

#include "job/process_report_dlg.h"
#include "kvtools/kvtools.h"
#include "mfc/dialog_controls.h"
#include "resources/resource.h"

void CMosaiconDlg::ShowMessage(MessageIcon icon, const std::string& text) {
  MessageBox(text, MB_OK | (icon == MessageIcon::kInformation ? MB_ICONINFORMATION : MB_ICONEXCLAMATION));
}

void CMosaiconDlg::WriteBackTargetUrl(const std::string& url) {
  SetDlgItemText(IDC_TARGET_URL, url);
}

void CMosaiconDlg::WriteBackMapTitle(const std::string& title) {
  SetDlgItemText(IDC_MAP_TITLE, title);
}

void CMosaiconDlg::WriteBackTargetFolder(const std::string& folder) {
  m_targetFolder.SetWindowText(folder);
}

Answer CMosaiconDlg::AskYesNoCancel(const std::string& text) {
  switch (MessageBox(text, MB_YESNOCANCEL)) {
    case IDYES:
      return Answer::kYes;
    case IDNO:
      return Answer::kNo;
    default:
      return Answer::kCancel;
  }
}

// When the job is done the URL field is enabled whatever its check box says: the user sees what is
// there, and the box decides again when it is clicked.
void CMosaiconDlg::SetBusy(bool busy) {
  // What was clicked while the controls were locked must find them locked.
  if (!busy) KVT_PumpMessages();
  if (m_bClosed) return;
  m_bBusy = busy;
  const HWND focus = GetFocus();
  EnableWindow(GetDlgItem(IDC_CANCEL_JOB), busy);
  LockControls(busy);
  DragAcceptFiles(m_hWnd, !busy);
  ShowButtonIcons();
  ShowAnimation(busy);
  if (busy) {
    m_taskbar.Begin();
  } else {
    m_taskbar.End();
  }
  afx::LeaveDisabledControl(*this, focus, busy ? IDC_CANCEL_JOB : IDC_START);
}

// Three buttons look otherwise while a job runs.
void CMosaiconDlg::ShowButtonIcons() {
  m_icons.Show(GetDlgItem(IDC_START), MAKEINTRESOURCEA(m_bBusy ? IDI_START_BUSY : IDI_START));
  m_icons.Show(GetDlgItem(IDC_EXIT), MAKEINTRESOURCEA(m_bBusy ? IDI_EXIT_BUSY : IDI_EXIT));
  m_icons.Show(GetDlgItem(IDC_CANCEL_JOB),
               m_bBusy ? MAKEINTRESOURCEA(IDI_CANCELSMALL) : "IDI_ICON_CANCELSMALLG");
  m_icons.Show(GetDlgItem(IDC_UPLOAD), MAKEINTRESOURCEA(IDI_UPLOAD));
  m_icons.Show(GetDlgItem(IDC_ABOUT), MAKEINTRESOURCEA(IDI_INFO));
  m_icons.Show(GetDlgItem(IDC_HELP_INPUT_OUTPUT), MAKEINTRESOURCEA(IDI_HELP_BUTTON));
  m_icons.Show(GetDlgItem(IDC_HELP_WEB_SERVER), MAKEINTRESOURCEA(IDI_HELP_BUTTON));
}

void CMosaiconDlg::ShowAnimation(bool busy) {
  const HWND animation = GetDlgItem(IDC_BUSY_ANIMATION);
  if (busy) {
    ::SendMessageA(animation, ACM_OPENA, 0, reinterpret_cast<LPARAM>(MAKEINTRESOURCEA(IDR_BUSY_AVI)));
    ::SendMessageA(animation, ACM_PLAY, static_cast<WPARAM>(-1), MAKELPARAM(0, -1));
  } else {
    ::SendMessageA(animation, ACM_OPENA, 0, 0);
  }
  ShowWindow(animation, busy ? SW_SHOW : SW_HIDE);
}

void CMosaiconDlg::SetProgressLabel(const std::string& text) {
  SetDlgItemText(IDC_PROGRESS_LABEL, text);
  m_progress.RestartClock();
}

void CMosaiconDlg::SetProgressRange(int lower, int upper) {
  m_progress.SetRange(static_cast<short>(lower), static_cast<short>(upper));
}

void CMosaiconDlg::SetProgressPosition(int percent) {
  m_progress.SetPos(percent);
}

void CMosaiconDlg::NavigatePreview(const std::string& page) {
  // What the browser cannot show it says itself.
  m_preview.Navigate(page);
}

void CMosaiconDlg::PumpMessages() {
  KVT_PumpMessages();
}

void CMosaiconDlg::ShowReport(const JobReport& report) {
  CProcessReportDlg dialog(report.elapsed, report.log, report.copyHint, report.webHint, this);
  const std::string details = AnyFailed(report.maps) ? m_tilerLog.Keep() : std::string();
  dialog.SetProblems(CountProblems(report.maps), DescribeProblems(report.maps, details));
  dialog.DoModal();
}
