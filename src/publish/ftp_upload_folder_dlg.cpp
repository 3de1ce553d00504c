// The upload dialog: the connection.
#include "publish/ftp_upload_folder_dlg.h"

#include <utility>

#include "kvtools/flag_guard.h"
#include "kvtools/kvtools.h"
#include "net/error_codes.h"
#include "net/net_text.h"
#include "publish/addresses.h"
#include "publish/entry_date.h"
#include "publish/ftp_settings.h"
#include "publish/index_upload.h"
#include "resources/resource.h"

namespace {

constexpr UINT_PTR kKeepAliveTimer = 100;
constexpr UINT kKeepAliveMilliseconds = 20000;

// Short texts stand on the stack, which crash reports hold.
class Password {
 public:
  // Leaves nothing in text.
  explicit Password(std::string&& text) : m_text(text) { Wipe(text.data(), text.size()); }
  ~Password() { Wipe(m_text.data(), m_text.size()); }
  Password(const Password&) = delete;
  Password& operator=(const Password&) = delete;

  const std::string& Text() const { return m_text; }

 private:
  std::string m_text;
};

}  // namespace

BEGIN_MESSAGE_MAP(CFtpUploadFolderDlg, CDialogEx)
ON_BN_CLICKED(IDC_FTP_UPLOAD, CFtpUploadFolderDlg::OnUpload)
ON_BN_CLICKED(IDC_FTP_ABORT, CFtpUploadFolderDlg::OnAbort)
ON_BN_CLICKED(IDC_FTP_CONNECT, CFtpUploadFolderDlg::OnConnect)
ON_BN_CLICKED(IDC_FTP_DISCONNECT, CFtpUploadFolderDlg::OnDisconnect)
ON_BN_CLICKED(IDC_FTP_REMOVE, CFtpUploadFolderDlg::OnRemove)
ON_BN_CLICKED(IDC_FTP_UPDATE_INDEX, CFtpUploadFolderDlg::OnUpdateRemoteIndex)
ON_BN_CLICKED(IDC_FTP_REFRESH, CFtpUploadFolderDlg::OnRefresh)
ON_BN_CLICKED(IDC_FTP_BYTE, CFtpUploadFolderDlg::OnByte)
ON_BN_CLICKED(IDC_FTP_ASCII, CFtpUploadFolderDlg::OnAscii)
ON_MESSAGE(WM_SETCURSOR, CFtpUploadFolderDlg::OnSetCursor)
ON_WM_TIMER()
ON_WM_DESTROY()
END_MESSAGE_MAP()

CFtpUploadFolderDlg::CFtpUploadFolderDlg(std::string webUrl, std::string localFolder, CWnd* parent)
    : CDialogEx(IDD_FTP_UPLOAD, parent),
      m_webUrl(std::move(webUrl)),
      m_localFolder(std::move(localFolder)),
      m_ftp(*this),
      m_server(m_ftp) {}

void CFtpUploadFolderDlg::OnConnect() {
  if (m_bBusy) return;
  {
    const FlagGuard busy(m_bBusy);
    Connect();
  }
  CloseIfAsked();
}

void CFtpUploadFolderDlg::Connect() {
  if (m_ftp.IsConnected()) return;
  const bool firewallMode = IsDlgButtonChecked(IDC_FTP_FIREWALL_MODE) != FALSE;
  m_ftp.SetPassive(firewallMode);
  SaveFirewallMode(firewallMode);
  m_host = GetDlgItemText(IDC_FTP_HOST);
  m_remoteFolder = GetDlgItemText(IDC_FTP_REMOTE_FOLDER);
  const std::string userName = GetDlgItemText(IDC_FTP_USER_NAME);
  const Password password(GetDlgItemText(IDC_FTP_PASSWORD));

  CWaitCursor wait;
  m_pWaitCursor = &wait;
  const HostAddress address = ParseHostAddress(m_host);
  m_ftp.Reset();
  m_ftp.SetControlPort(address.port);
  const int failed = m_ftp.FTPConnect(address.host.c_str(), userName.c_str(), password.Text().c_str(), "");
  if (failed != kNetSuccess) {
    // A login that was refused leaves a connection, which would be taken for a good one.
    m_ftp.FTPClose();
    m_pWaitCursor = nullptr;
    if (!m_bCloseAsked) Tell(CUT_ERR::GetErrorString(failed), MB_ICONEXCLAMATION);
    return;
  }
  ChooseTransferType();
  SaveLogin(m_host, userName, password.Text());
  EnterRemoteFolder();
  SaveRemoteFolder(m_remoteFolder);
  EnableWindow(m_list.GetSafeHwnd(), TRUE);
  FillList();
  m_pWaitCursor = nullptr;
  ShowConnected(true);
  SetTimer(m_hWnd, kKeepAliveTimer, kKeepAliveMilliseconds, nullptr);
  NoticeLostConnection();
}

// A server that refuses it can still be worked with; the error hook has seen the result.
void CFtpUploadFolderDlg::ChooseTransferType() {
  const bool byteTransfer = IsDlgButtonChecked(IDC_FTP_BYTE) != FALSE;
  SaveTransferType(byteTransfer);
  m_ftp.SetTransferType(byteTransfer ? 1 : 0);
}

// A leading "/" is the server's root; other empty components mean nothing.
void CFtpUploadFolderDlg::EnterRemoteFolder() {
  std::vector<std::string> components;
  KVT_ParseString(m_remoteFolder, '/', components);
  for (size_t i = 0; i < components.size(); ++i) {
    const bool isRoot = i == 0 && components[i].empty() && components.size() > 1;
    const std::string component = isRoot ? "/" : components[i];
    if (component.empty()) continue;
    const int failed = m_ftp.ChDir(component.c_str());
    if (m_bCloseAsked) return;
    if (failed == kNetNoResponse) {
      Tell("no response", MB_ICONEXCLAMATION);
    } else if (failed != kNetSuccess) {
      Tell("WARNING. Can't access to '" + component + "' remote folder, specified in web url",
           MB_ICONEXCLAMATION);
    }
  }
}

void CFtpUploadFolderDlg::OnDisconnect() {
  if (m_bBusy || !m_ftp.IsConnected()) return;
  m_ftp.FTPClose();
  NoticeLostConnection();
}

// Also when the server has gone away by itself: the controls must not promise what is not there.
void CFtpUploadFolderDlg::NoticeLostConnection() {
  if (!m_bConnected || m_ftp.IsConnected()) return;
  m_ftp.FTPClose();
  KillTimer(m_hWnd, kKeepAliveTimer);
  m_list.DeleteAllItems();
  ShowConnected(false);
}

void CFtpUploadFolderDlg::OnRefresh() {
  if (m_bBusy) return;
  {
    const FlagGuard busy(m_bBusy);
    FillList();
    NoticeLostConnection();
  }
  CloseIfAsked();
}

void CFtpUploadFolderDlg::FillList() {
  if (!m_ftp.IsConnected()) return;
  m_list.DeleteAllItems();
  const int failed = m_server.List();
  if (failed != kNetSuccess) {
    if (!m_bCloseAsked) Tell(CUT_ERR::GetErrorString(failed), MB_ICONEXCLAMATION);
    return;
  }
  m_list.SendMessage(WM_SETREDRAW, FALSE);
  const int count = m_server.EntryCount();
  for (int i = 0; i < count; ++i) {
    const FtpDirEntry entry = m_server.Entry(i);
    if (std::string(entry.name) == kIndexPageName) continue;
    const int row = m_list.InsertItem(m_list.GetItemCount(), entry.name);
    m_list.SetItemText(row, 1, FormatEntryDate(entry));
  }
  m_list.SendMessage(WM_SETREDRAW, TRUE);
}

// The two boxes are what a pair of radio buttons would be.
void CFtpUploadFolderDlg::OnByte() {
  CheckDlgButton(IDC_FTP_ASCII, !IsDlgButtonChecked(IDC_FTP_BYTE));
}

void CFtpUploadFolderDlg::OnAscii() {
  CheckDlgButton(IDC_FTP_BYTE, !IsDlgButtonChecked(IDC_FTP_ASCII));
}

// Keeps the server from ending a connection on which nothing happens. In the middle of a conversation
// something does.
void CFtpUploadFolderDlg::OnTimer(UINT_PTR id) {
  if (id != kKeepAliveTimer) return;
  KillTimer(m_hWnd, kKeepAliveTimer);
  if (!m_bBusy) {
    {
      const FlagGuard busy(m_bBusy);
      if (m_ftp.IsConnected()) m_ftp.NoOp();
      if (m_ftp.HasGivenUp()) m_ftp.CloseConnection();
      NoticeLostConnection();
    }
    CloseIfAsked();
  }
  if (m_bConnected) SetTimer(m_hWnd, kKeepAliveTimer, kKeepAliveMilliseconds, nullptr);
}

LRESULT CFtpUploadFolderDlg::OnSetCursor(WPARAM wParam, LPARAM lParam) {
  const bool isAbort = reinterpret_cast<HWND>(wParam) == GetDlgItem(IDC_FTP_ABORT);
  if (m_pWaitCursor == nullptr || isAbort || LOWORD(lParam) != HTCLIENT) return Default();
  m_pWaitCursor->Restore();
  return TRUE;
}

// The button "Exit".
void CFtpUploadFolderDlg::OnOK() {
  Exit();
}

// Escape and the close button of the frame.
void CFtpUploadFolderDlg::OnCancel() {
  Exit();
}

// In the middle of a conversation the dialog ends when that has come to its end.
void CFtpUploadFolderDlg::Exit() {
  if (m_bBusy) {
    if (!m_bOperation || AskToStop()) m_bCloseAsked = true;
    return;
  }
  if (m_ftp.IsConnected()) m_ftp.FTPClose();
  EndDialog(IDOK);
}

void CFtpUploadFolderDlg::CloseIfAsked() {
  if (m_bCloseAsked && m_hWnd != nullptr) Exit();
}

void CFtpUploadFolderDlg::OnDestroy() {
  KillTimer(m_hWnd, kKeepAliveTimer);
  // A conversation that is going on must not outlive its window.
  m_bCloseAsked = true;
  Default();
}
