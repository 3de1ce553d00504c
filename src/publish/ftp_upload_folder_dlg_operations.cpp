// The upload dialog: its long operations, and what they show.
#include <vector>

#include "handles/keep_awake.h"
#include "kvtools/flag_guard.h"
#include "kvtools/kvtools.h"
#include "net/error_codes.h"
#include "publish/folder_upload.h"
#include "publish/ftp_upload_folder_dlg.h"
#include "publish/index_page.h"
#include "publish/index_upload.h"
#include "publish/remote_names.h"
#include "publish/remote_removal.h"
#include "resources/resource.h"

namespace {

constexpr ULONGLONG kCaptionMilliseconds = 100;  // painting takes its time
constexpr int kCommonApplicationData = 35;       // CSIDL_COMMON_APPDATA

std::string RemovalFailure(const std::string& name) {
  return "Unable to remove remote folder '" + name + "'";
}

}  // namespace

void CFtpUploadFolderDlg::OnUpload() {
  if (!MayBegin(IDC_FTP_UPLOAD)) return;
  const std::string folder = KVT_OptimizePath(m_localFolder, 0);
  const std::string remoteName = RemoteNameOfFolder(folder);
  if (!m_ftp.IsConnected()) {
    m_bLossUntold = true;
  } else if (!m_files.IsFolder(folder)) {
    Tell("The folder to upload does not exist", MB_ICONINFORMATION);
  } else if (remoteName.empty()) {
    Tell("Unable to upload local folder", MB_ICONINFORMATION);
  } else if (EntersRemoteFolder(remoteName)) {
    Tell("Remote folder already exists.\nPlease remove it or specify a different folder name",
         MB_ICONINFORMATION);
    // It stays there, which the list must not hide: what is removed next would be in there.
    if (!IsAborted()) Refresh();
  } else if (m_ftp.IsConnected() && !IsAborted()) {
    Upload(folder);
  }
  FinishConversation();
}

bool CFtpUploadFolderDlg::EntersRemoteFolder(const std::string& name) {
  const FlagGuard busy(m_bBusy);
  const Hourglass hourglass(*this);
  return m_server.ChangeFolder(name) == kNetSuccess;
}

void CFtpUploadFolderDlg::Upload(const std::string& folder) {
  int total = 0;
  int uploaded = 0;
  {
    const FlagGuard busy(m_bBusy);
    const KeepAwake awake;
    BeginOperation(Operation::kUpload);
    total = CountFiles(folder);
    SetProgressRange(total);
    SetProgressPosition(0);
    m_progress.RestartClock();
    KVT_PumpMessages();
    uploaded = FolderUpload(m_server, m_files, *this, total).Upload(folder);
    EndOperation(Operation::kUpload);
  }
  ShowUploadReport(uploaded, total);
}

// A disk can take its time.
int CFtpUploadFolderDlg::CountFiles(const std::string& folder) {
  const Hourglass hourglass(*this);
  return KVT_CountFileInFolder(folder, 1, [this] {
    PumpMessages();
    return !IsAborted();
  });
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
  if (!MayBegin(IDC_FTP_REMOVE)) return;
  const int row = m_list.GetSelectionMark();
  if (m_ftp.IsConnected() && row >= 0 && row < m_list.GetItemCount())
    AskAndRemove(m_list.GetItemText(row, 0));
  FinishConversation();
}

void CFtpUploadFolderDlg::AskAndRemove(const std::string& name) {
  if (!IsPlainRemoteName(name)) {
    Tell(RemovalFailure(name), MB_ICONEXCLAMATION);
  } else if (Ask("Do you want to remove remote folder '" + name + "'?\nYou cannot undo this operation",
                 MB_YESNO | MB_ICONINFORMATION) == IDYES &&
             // It may have gone while the question was open.
             m_ftp.IsConnected() && !IsAborted()) {
    Remove(name);
  }
}

void CFtpUploadFolderDlg::Remove(const std::string& name) {
  RemoteRemoval removal(m_server, *this);
  bool isAborted = false;
  bool isRemoved = false;
  {
    const FlagGuard busy(m_bBusy);
    const KeepAwake awake;
    BeginOperation(Operation::kRemoval);
    KVT_PumpMessages();
    {
      const Hourglass hourglass(*this);
      removal.RemoveContents(name);
      isAborted = IsAborted();
      isRemoved = !isAborted && removal.IsSound() && m_server.RemoveFolder(name) == kNetSuccess;
    }
    EndOperation(Operation::kRemoval);
  }
  if (isRemoved || isAborted) return;
  const std::string left = removal.PassedOver();
  Tell(RemovalFailure(name) + (left.empty() ? "" : "\nNot deleted: " + left), MB_ICONEXCLAMATION);
}

void CFtpUploadFolderDlg::OnUpdateRemoteIndex() {
  if (!MayBegin(IDC_FTP_UPDATE_INDEX)) return;
  if (m_ftp.IsConnected()) UpdateRemoteIndex();
  FinishConversation();
}

void CFtpUploadFolderDlg::UpdateRemoteIndex() {
  bool isUpdated = false;
  {
    const FlagGuard busy(m_bBusy);
    const KeepAwake awake;
    BeginOperation(Operation::kIndex);
    RemoteSurvey survey(m_server, *this);
    survey.Collect(Rows(), m_entries);
    // An abort ends the survey, but what was gathered is still published. Who leaves leaves the old page.
    m_bAbort = 0;
    isUpdated = survey.HasSucceeded() && !IsAborted() && SendIndexPage();
    EndOperation(Operation::kIndex);
    // The names in the list mean nothing in another folder.
    if (survey.HasLostItsWay() && !IsAborted()) FillList();
  }
  EnableWindow(m_check.GetSafeHwnd(), isUpdated);
  if (isUpdated) {
    m_check.SetURL(IndexPageAddress(m_webUrl));
    Tell("Remote index updated", MB_ICONINFORMATION);
  } else if (!m_bCloseAsked) {
    Tell("Unable to update the remote index", MB_ICONEXCLAMATION);
  }
}

std::vector<RemoteRow> CFtpUploadFolderDlg::Rows() const {
  std::vector<RemoteRow> rows;
  const int count = m_list.GetItemCount();
  rows.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) rows.push_back({m_list.GetItemText(i, 0), m_list.GetItemText(i, 1)});
  return rows;
}

// Between the old page and the new one there is none: a wish to close has to wait.
bool CFtpUploadFolderDlg::SendIndexPage() {
  const FlagGuard sending(m_bSendingPage);
  EnableWindow(GetDlgItem(IDC_FTP_ABORT), FALSE);
  return UploadIndexPage(m_server, LocalIndexPath(KVT_GetSpecialFolder(kCommonApplicationData)),
                         MakeIndexPage(m_entries, m_webUrl, KVT_GetCurrentSysDate(0, 0))) != 0;
}

void CFtpUploadFolderDlg::OnAbort() {
  AskToStop();
}

// True when the operation is to stop.
bool CFtpUploadFolderDlg::AskToStop() {
  if (!m_bOperation || m_bSendingPage || m_bBoxIsOpen) return false;
  if (m_bAbort != 0) return true;
  if (Ask("Do you want to stop current operation?", MB_YESNO | MB_ICONQUESTION) == IDNO) return false;
  m_bAbort = 1;
  return true;
}

void CFtpUploadFolderDlg::BeginOperation(Operation operation) {
  m_bOperation = true;
  m_bAbort = 0;
  if (operation != Operation::kIndex) EnableWindow(m_check.GetSafeHwnd(), FALSE);
  if (operation == Operation::kRemoval) {
    SetStatus("Start deleting...");
    ShowWindow(m_progress.GetSafeHwnd(), SW_HIDE);
    ShowWindow(GetDlgItem(IDC_FTP_STATUS), SW_SHOW);
  }
  ShowState();
}

void CFtpUploadFolderDlg::EndOperation(Operation operation) {
  m_bAbort = 0;
  m_bOperation = false;
  SetProgressPosition(0);
  SetProgressCaption("");
  ShowCaption();
  NoticeLostConnection();
  if (operation != Operation::kIndex) EnableWindow(m_check.GetSafeHwnd(), TRUE);
  if (operation == Operation::kRemoval) {
    ShowWindow(GetDlgItem(IDC_FTP_STATUS), SW_HIDE);
    ShowWindow(m_progress.GetSafeHwnd(), SW_SHOW);
  }
  ShowState();
  if (operation != Operation::kIndex && !IsAborted()) FillList();
  NoticeLostConnection();
}

bool CFtpUploadFolderDlg::IsAborted() {
  return IsLeaving() || (m_bAbort != 0 && !m_bSendingPage);
}

bool CFtpUploadFolderDlg::IsLeaving() {
  return (m_bCloseAsked || m_bDisconnectAsked) && !m_bSendingPage;
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
