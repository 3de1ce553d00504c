// The upload dialog: its controls.
#include "publish/ftp_upload_folder_dlg.h"

// After windows.h.
#include <commctrl.h>

#include "kvtools/flag_guard.h"
#include "mfc/dialog_controls.h"
#include "net/timeout_clock.h"
#include "publish/addresses.h"
#include "publish/ftp_settings.h"
#include "resources/resource.h"

namespace {

constexpr afx::ControlTip kToolTips[] = {
    {IDC_FTP_HOST, "The name or address of the FTP server; with a port as in ftp.example.com:2121"},
    {IDC_FTP_FIREWALL_MODE,
     "The server opens the ports (passive mode). Needed behind most firewalls and routers."},
    {IDC_FTP_REMOTE_FOLDER, "The folder on the server, as in public_html/maps; empty: where the login leads"},
    {IDC_FTP_PASSWORD,
     "FTP sends the password unencrypted. It is kept on this computer as plain text for the next time."},
    {IDC_FTP_BYTE, "Sends files as they are. Right for pictures, and for everything else."},
    {IDC_FTP_ASCII, "Lets the server change line ends: it spoils pictures"},
    {IDC_FTP_CONNECT, "Log in to the server"},
    {IDC_FTP_REFRESH, "Read the remote folder again"},
    {IDC_FTP_REMOVE, "Remove the selected remote folder with everything in it"},
    {IDC_FTP_UPLOAD, "Copy the data folder into the current remote folder"},
};

// What leads to a connection, what needs one, and what needs that nothing goes on.
constexpr int kConnectionControls[] = {IDC_FTP_HOST,     IDC_FTP_REMOTE_FOLDER, IDC_FTP_USER_NAME,
                                       IDC_FTP_PASSWORD, IDC_FTP_FIREWALL_MODE, IDC_FTP_BYTE,
                                       IDC_FTP_ASCII,    IDC_FTP_CONNECT};
constexpr int kRemoteControls[] = {IDC_FTP_LIST, IDC_FTP_UPLOAD, IDC_FTP_DISCONNECT, IDC_FTP_REMOVE,
                                   IDC_FTP_REFRESH};
constexpr int kIdleControls[] = {IDOK, IDC_FTP_DATA_FOLDER, IDC_FTP_UPDATE_INDEX};

}  // namespace

BOOL CFtpUploadFolderDlg::OnInitDialog() {
  CDialogEx::OnInitDialog();
  m_webUrl = WithoutScheme(m_webUrl);
  SubclassControls();
  AddColumns();
  afx::CreateToolTips(m_toolTips, *this, kToolTips);
  RestoreSettings();
  m_dataFolder.SetWindowText(m_localFolder);
  m_progress.m_bShowTime = FALSE;
  return TRUE;
}

void CFtpUploadFolderDlg::SubclassControls() {
  m_progress.SubclassDlgItem(IDC_FTP_PROGRESS, this);
  m_list.SubclassDlgItem(IDC_FTP_LIST, this);
  m_dataFolder.SubclassDlgItem(IDC_FTP_DATA_FOLDER, this);
  m_dataFolder.EnableFolderBrowseButton();
  m_check.SubclassDlgItem(IDC_FTP_CHECK, this);
}

void CFtpUploadFolderDlg::AddColumns() {
  RECT client;
  GetClientRect(m_list.GetSafeHwnd(), &client);
  m_list.InsertColumn(0, "Folder", static_cast<int>(client.right * 0.6));
  m_list.InsertColumn(1, "Date", static_cast<int>(client.right * 0.4) - 5);
  m_list.SendMessage(LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
  EnableWindow(m_list.GetSafeHwnd(), FALSE);
}

void CFtpUploadFolderDlg::RestoreSettings() {
  const FtpSettings settings = LoadFtpSettings();
  SetDlgItemText(IDC_FTP_HOST, settings.host);
  SetDlgItemText(IDC_FTP_USER_NAME, settings.userName);
  SetDlgItemText(IDC_FTP_PASSWORD, settings.password);
  SetDlgItemText(IDC_FTP_REMOTE_FOLDER, settings.remoteFolder);
  CheckDlgButton(IDC_FTP_FIREWALL_MODE, settings.firewallMode);
  CheckDlgButton(IDC_FTP_BYTE, settings.byteTransfer);
  CheckDlgButton(IDC_FTP_ASCII, !settings.byteTransfer);
}

void CFtpUploadFolderDlg::ShowConnected(bool connected) {
  m_bConnected = connected;
  EnableWindow(m_check.GetSafeHwnd(), TRUE);
  ShowState();
}

// The link to the index page has a state of its own.
void CFtpUploadFolderDlg::ShowState() {
  const HWND focus = GetFocus();
  EnableControls(kConnectionControls, !m_bConnected);
  EnableControls(kRemoteControls, m_bConnected && !m_bOperation);
  EnableControls(kIdleControls, !m_bOperation);
  EnableWindow(GetDlgItem(IDC_FTP_ABORT), m_bOperation);
  afx::LeaveDisabledControl(*this, focus,
                            m_bOperation   ? IDC_FTP_ABORT
                            : m_bConnected ? IDC_FTP_UPLOAD
                                           : IDC_FTP_CONNECT);
}

void CFtpUploadFolderDlg::EnableControls(std::span<const int> ids, bool enable) {
  for (const int id : ids) EnableWindow(GetDlgItem(id), enable);
}

// A window that is gone has nothing to ask or to say.
int CFtpUploadFolderDlg::Ask(const std::string& text, UINT type) {
  if (m_hWnd == nullptr) return 0;
  const FlagGuard open(m_bBoxIsOpen);
  // It may have come up in the middle of a wait for the server.
  const TimeoutPause pause;
  return MessageBox(text, type);
}

void CFtpUploadFolderDlg::Tell(const std::string& text, UINT icon) {
  Ask(text, MB_OK | icon);
}
