// The upload dialog: the connection.
#include "publish/ftp_upload_folder_dlg.h"

#include <optional>
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

CFtpUploadFolderDlg::Hourglass::Hourglass(CFtpUploadFolderDlg& dialog)
    : m_dialog(dialog), m_pOuter(dialog.m_pWaitCursor) {
  dialog.m_pWaitCursor = &m_cursor;
}

void CFtpUploadFolderDlg::OnConnect() {
  if (!MayBegin(IDC_FTP_CONNECT)) return;
  {
    const FlagGuard busy(m_bBusy);
    Connect();
  }
  FinishConversation();
}

void CFtpUploadFolderDlg::Connect() {
  if (m_ftp.IsConnected()) return;
  const bool firewallMode = IsDlgButtonChecked(IDC_FTP_FIREWALL_MODE) != FALSE;
  m_ftp.SetPassive(firewallMode);
  SaveFirewallMode(firewallMode);
  m_host = GetDlgItemText(IDC_FTP_HOST);
  m_remoteFolder = GetDlgItemText(IDC_FTP_REMOTE_FOLDER);
  if (const int failed = LogIn()) {
    if (!m_bCloseAsked) Tell(CUT_ERR::GetErrorString(failed), MB_ICONEXCLAMATION);
    return;
  }
  {
    const Hourglass hourglass(*this);
    EnterRemoteFolder();
    SaveRemoteFolder(m_remoteFolder);
    EnableWindow(m_list.GetSafeHwnd(), TRUE);
    FillList();
  }
  ShowConnected(true);
  if (m_hWnd != nullptr) SetTimer(m_hWnd, kKeepAliveTimer, kKeepAliveMilliseconds, nullptr);
}

int CFtpUploadFolderDlg::LogIn() {
  const Hourglass hourglass(*this);
  const std::string userName = GetDlgItemText(IDC_FTP_USER_NAME);
  const Password password(GetDlgItemText(IDC_FTP_PASSWORD));
  const HostAddress address = ParseHostAddress(m_host);
  m_ftp.Reset();
  m_ftp.SetControlPort(address.port);
  const int failed = m_ftp.FTPConnect(address.host.c_str(), userName.c_str(), password.Text().c_str(), "");
  if (failed != kNetSuccess) {
    // A login that was refused leaves a connection, which would be taken for a good one.
    m_ftp.FTPClose();
    return failed;
  }
  ChooseTransferType();
  SaveLogin(m_host, userName, password.Text());
  return kNetSuccess;
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
  if (!m_bConnected || m_bOperation || m_bBoxIsOpen) return;
  m_bDisconnectAsked = true;
  if (!m_bBusy) FinishConversation();
}

void CFtpUploadFolderDlg::Disconnect() {
  m_bDisconnectAsked = false;
  m_ftp.FTPClose();
  KillTimer(m_hWnd, kKeepAliveTimer);
  m_list.DeleteAllItems();
  ShowConnected(false);
}

// When the server has gone away by itself: the controls must not promise what is not there.
void CFtpUploadFolderDlg::NoticeLostConnection() {
  if (!m_bConnected || m_ftp.IsConnected()) return;
  m_bLossUntold = !m_bDisconnectAsked;
  Disconnect();
}

// Whether the handler of a button may talk to the server.
bool CFtpUploadFolderDlg::MayBegin(int command) {
  if (m_bBusy && m_bKeepingAlive) m_nPostponed = command;
  return !m_bBusy && !m_bBoxIsOpen;
}

// What has come up during a conversation. Every handler ends with it, and none that runs inside another.
void CFtpUploadFolderDlg::FinishConversation() {
  if (m_hWnd == nullptr || m_bBoxIsOpen) return;
  NoticeLostConnection();
  if (m_bDisconnectAsked) Disconnect();
  if (m_bLossUntold && !m_bCloseAsked) {
    m_bLossUntold = false;
    Tell("Connection lost", MB_ICONEXCLAMATION);
  }
  if (m_bCloseAsked) return Exit();
  const int command = std::exchange(m_nPostponed, 0);
  if (command != 0 && m_bConnected) PostMessageA(m_hWnd, WM_COMMAND, MAKEWPARAM(command, BN_CLICKED), 0);
}

void CFtpUploadFolderDlg::OnRefresh() {
  if (!MayBegin(IDC_FTP_REFRESH)) return;
  Refresh();
  FinishConversation();
}

void CFtpUploadFolderDlg::Refresh() {
  const FlagGuard busy(m_bBusy);
  FillList();
}

void CFtpUploadFolderDlg::FillList() {
  if (!m_ftp.IsConnected()) return;
  std::optional<Hourglass> hourglass(*this);
  m_list.DeleteAllItems();
  const int failed = m_server.List();
  if (failed != kNetSuccess) {
    hourglass.reset();
    if (!IsAborted()) Tell(CUT_ERR::GetErrorString(failed), MB_ICONEXCLAMATION);
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
      const FlagGuard keepingAlive(m_bKeepingAlive);
      if (m_ftp.IsConnected()) m_ftp.NoOp();
      if (m_ftp.HasGivenUp()) m_ftp.CloseConnection();
      NoticeLostConnection();
    }
    FinishConversation();
  }
  if (m_bConnected && m_hWnd != nullptr) SetTimer(m_hWnd, kKeepAliveTimer, kKeepAliveMilliseconds, nullptr);
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

// In the middle of a conversation the dialog ends when that has come to its end, and below a message box
// when that is answered.
void CFtpUploadFolderDlg::Exit() {
  if (m_bBusy || m_bBoxIsOpen) {
    if (!m_bOperation || m_bSendingPage || AskToStop()) m_bCloseAsked = true;
    return;
  }
  if (m_ftp.IsConnected()) m_ftp.FTPClose();
  EndDialog(IDOK);
}

void CFtpUploadFolderDlg::OnDestroy() {
  KillTimer(m_hWnd, kKeepAliveTimer);
  // A conversation that is going on must not outlive its window.
  m_bCloseAsked = true;
  Default();
}
