// The upload dialog: its long operations, and what they show.
#include <ctime>
#include <vector>

#include "kvtools/flag_guard.h"
#include "kvtools/kvtools.h"
#include "net/error_codes.h"
#include "publish/folder_upload.h"
#include "publish/ftp_upload_folder_dlg.h"
#include "publish/index_page.h"
#include "publish/index_upload.h"
#include "publish/remote_names.h"
#include "publish/remote_removal.h"
#include "publish/remote_survey.h"
#include "resources/resource.h"

namespace {

constexpr ULONGLONG kCaptionMilliseconds = 100;  // painting takes its time
constexpr int kCommonApplicationData = 35;       // CSIDL_COMMON_APPDATA

// Locked while an operation runs.
constexpr int kLockedControls[] = {
    IDC_FTP_DISCONNECT, IDOK,         IDC_FTP_REMOVE,       IDC_FTP_REFRESH,
    IDC_FTP_UPLOAD,     IDC_FTP_LIST, IDC_FTP_UPDATE_INDEX, IDC_FTP_DATA_FOLDER};

}  // namespace

void CFtpUploadFolderDlg::OnUpload() {
  if (m_bBusy) return;
  const std::string folder = KVT_OptimizePath(m_localFolder, 0);
  const std::string remoteName = RemoteNameOfFolder(folder);
  if (!m_ftp.IsConnected()) {
    Tell("Connection lost", MB_ICONEXCLAMATION);
    NoticeLostConnection();
  } else if (!m_folders.FolderExists(folder)) {
    Tell("The folder to upload does not exist", MB_ICONINFORMATION);
  } else if (remoteName.empty()) {
    Tell("Unable to upload local folder", MB_ICONINFORMATION);
  } else {
    Upload(folder);
  }
  CloseIfAsked();
}

void CFtpUploadFolderDlg::Upload(const std::string& folder) {
  int total = 0;
  int uploaded = 0;
  bool isThere = false;
  bool hasBegun = false;
  {
    const FlagGuard busy(m_bBusy);
    isThere = m_server.ChangeFolder(RemoteNameOfFolder(folder)) == kNetSuccess;
    if (!isThere && !m_bCloseAsked) {
      hasBegun = true;
      BeginOperation(Operation::kUpload);
      total = m_folders.CountFiles(folder);
      SetProgressRange(total);
      SetProgressPosition(0);
      m_progress.m_startTicks = static_cast<std::int32_t>(clock());
      KVT_PumpMessages();
      uploaded = FolderUpload(m_server, m_folders, *this, total).Upload(folder);
      EndOperation(Operation::kUpload);
    }
  }
  if (isThere) {
    Tell("Remote folder already exists.\nPlease remove it or specify a different folder name",
         MB_ICONINFORMATION);
  } else if (hasBegun && m_hWnd != nullptr) {
    ShowUploadReport(uploaded, total);
  }
}

void CFtpUploadFolderDlg::ShowUploadReport(int uploaded, int total) {
  if (uploaded == total) {
    Tell(std::to_string(uploaded) + " file uploaded", MB_ICONINFORMATION);
  } else {
    Tell("Only " + std::to_string(uploaded) + " file are uploaded correctly (" + std::to_string(total) +
             " total)",
         MB_ICONEXCLAMATION);
  }
}

void CFtpUploadFolderDlg::OnRemove() {
  if (m_bBusy || !m_ftp.IsConnected()) return;
  const int row = m_list.GetSelectionMark();
  if (row < 0 || row >= m_list.GetItemCount()) return;
  const std::string name = m_list.GetItemText(row, 0);
  const std::string failure = "Unable to remove remote folder '" + name + "'";
  if (!IsPlainRemoteName(name)) {
    Tell(failure, MB_ICONEXCLAMATION);
  } else if (MessageBox("Do you want to remove remote folder '" + name + "'?\nYou cannot undo this operation",
                        MB_YESNO | MB_ICONINFORMATION) == IDYES &&
             !Remove(name) && !m_bCloseAsked) {
    Tell(failure, MB_ICONEXCLAMATION);
  }
  CloseIfAsked();
}

// False when the folder is still there and nobody asked to stop.
bool CFtpUploadFolderDlg::Remove(const std::string& name) {
  if (m_bBusy) return true;  // something else began while the question was open
  const FlagGuard busy(m_bBusy);
  BeginOperation(Operation::kRemoval);
  SetStatus("Start deleting...");
  KVT_PumpMessages();
  CWaitCursor wait;
  m_pWaitCursor = &wait;
  RemoteRemoval removal(m_server, *this);
  removal.RemoveContents(name);
  const bool isAborted = IsAborted();
  const bool isRemoved = !isAborted && removal.IsSound() && m_server.RemoveFolder(name) == kNetSuccess;
  m_pWaitCursor = nullptr;
  EndOperation(Operation::kRemoval);
  return isRemoved || isAborted;
}

void CFtpUploadFolderDlg::OnUpdateRemoteIndex() {
  if (m_bBusy || !m_ftp.IsConnected()) return;
  bool isUpdated = false;
  {
    const FlagGuard busy(m_bBusy);
    BeginOperation(Operation::kIndex);
    std::vector<RemoteRow> rows;
    for (int i = 0; i < m_list.GetItemCount(); ++i) {
      rows.push_back({m_list.GetItemText(i, 0), m_list.GetItemText(i, 1)});
    }
    RemoteSurvey survey(m_server, *this);
    survey.Collect(rows, m_entries);
    // An abort ends the survey, but what was gathered is still published.
    m_bAbort = 0;
    isUpdated = survey.HasSucceeded() &&
                UploadIndexPage(m_server, LocalIndexPath(KVT_GetSpecialFolder(kCommonApplicationData)),
                                MakeIndexPage(m_entries, m_webUrl, KVT_GetCurrentSysDate(0, 0))) != 0;
    EndOperation(Operation::kIndex);
  }
  EnableWindow(m_check.GetSafeHwnd(), isUpdated);
  if (isUpdated) {
    m_check.SetURL(IndexPageAddress(m_webUrl));
    Tell("Remote index updated", MB_ICONINFORMATION);
  } else if (m_hWnd != nullptr) {
    Tell("Unable to update the remote index", MB_ICONEXCLAMATION);
  }
  CloseIfAsked();
}

void CFtpUploadFolderDlg::OnAbort() {
  AskToStop();
}

// True when the operation is to stop.
bool CFtpUploadFolderDlg::AskToStop() {
  if (!m_bOperation || m_bAsking) return false;
  const FlagGuard asking(m_bAsking);
  if (MessageBox("Do you want to stop current operation?", MB_YESNO | MB_ICONQUESTION) == IDNO) return false;
  m_bAbort = 1;
  return true;
}

void CFtpUploadFolderDlg::BeginOperation(Operation operation) {
  const HWND focus = GetFocus();
  m_bOperation = true;
  m_bAbort = 0;
  EnableControls(kLockedControls, false);
  if (operation != Operation::kIndex) EnableWindow(m_check.GetSafeHwnd(), FALSE);
  if (operation == Operation::kRemoval) {
    ShowWindow(m_progress.GetSafeHwnd(), SW_HIDE);
    ShowWindow(GetDlgItem(IDC_FTP_STATUS), SW_SHOW);
  }
  EnableWindow(GetDlgItem(IDC_FTP_ABORT), TRUE);
  KeepFocus(focus, IDC_FTP_ABORT);
}

void CFtpUploadFolderDlg::EndOperation(Operation operation) {
  const HWND focus = GetFocus();
  m_bAbort = 0;
  m_bOperation = false;
  SetProgressPosition(0);
  SetProgressCaption("");
  ShowCaption();
  EnableWindow(GetDlgItem(IDC_FTP_ABORT), FALSE);
  EnableControls(kLockedControls, true);
  if (operation != Operation::kIndex) EnableWindow(m_check.GetSafeHwnd(), TRUE);
  if (operation == Operation::kRemoval) {
    ShowWindow(GetDlgItem(IDC_FTP_STATUS), SW_HIDE);
    ShowWindow(m_progress.GetSafeHwnd(), SW_SHOW);
  }
  KeepFocus(focus, IDC_FTP_UPLOAD);
  if (operation != Operation::kIndex && !m_bCloseAsked) FillList();
  NoticeLostConnection();
}

bool CFtpUploadFolderDlg::IsAborted() {
  return m_bAbort != 0 || m_bCloseAsked;
}

// Costs nothing when there is nothing to do: an upload of small files asks after each of them.
void CFtpUploadFolderDlg::PumpMessages() {
  if (m_bCaptionStale && GetTickCount64() - m_nCaptionShown >= kCaptionMilliseconds) ShowCaption();
  if (HIWORD(GetQueueStatus(QS_ALLINPUT)) != 0) KVT_PumpMessages();
}

void CFtpUploadFolderDlg::SetProgressRange(int count) {
  m_progress.SetRange32(0, count);
}

void CFtpUploadFolderDlg::SetProgressPosition(int position) {
  m_progress.SetPos(position);
}

int CFtpUploadFolderDlg::ProgressPosition() {
  return m_progress.GetPos();
}

void CFtpUploadFolderDlg::SetProgressCaption(const std::string& caption) {
  m_progress.SetCaption(caption);
  m_bCaptionStale = true;
}

// A position that is set may have painted the bar before its caption came.
void CFtpUploadFolderDlg::ShowCaption() {
  InvalidateRect(m_progress.GetSafeHwnd(), nullptr, FALSE);
  m_bCaptionStale = false;
  m_nCaptionShown = GetTickCount64();
}

void CFtpUploadFolderDlg::SetStatus(const std::string& text) {
  SetDlgItemText(IDC_FTP_STATUS, text);
}
