// The dialog that publishes a finished output folder by FTP: connects, shows the remote folder, uploads
// the local one into it and removes remote ones.
//
// Everything runs in the handlers of its buttons, in the thread of the user interface. While a handler
// talks to the server it pumps messages, so others may be called inside it; none of them talks to the
// server then. Abort, Disconnect and the close button of the frame are remembered and end what goes on;
// a click on another button that finds the timer keeping the connection alive is answered afterwards, and
// any other finds the hourglass or a locked button. While a message box of the dialog is open, only the
// timer does anything.
//
// The dialog is connected or it is not, and all controls follow from that (ShowState). That a connection
// is lost is noticed after every conversation and told once.
//
// The password is kept as plain text in the user's profile and sent unencrypted, as FTP does.
#ifndef MOSAICON_PUBLISH_FTP_UPLOAD_FOLDER_DLG_H_
#define MOSAICON_PUBLISH_FTP_UPLOAD_FOLDER_DLG_H_

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "files/system_files.h"
#include "mfc/dialog.h"
#include "mfc/edit_browse_ctrl.h"
#include "mfc/link_ctrl.h"
#include "mfc/list_ctrl.h"
#include "mfc/tool_tip_ctrl.h"
#include "mfc/wait_cursor.h"
#include "progress/progress_control.h"
#include "publish/ftp_remote_server.h"
#include "publish/ftp_upload_client.h"
#include "publish/publish_host.h"
#include "publish/remote_data_entry.h"
#include "publish/remote_survey.h"

class CFtpUploadFolderDlg : public CDialogEx, private PublishHost {
 public:
  // webUrl is the address under which the folder will be found, localFolder what is uploaded.
  CFtpUploadFolderDlg(std::string webUrl, std::string localFolder, CWnd* parent = nullptr);

 protected:
  BOOL OnInitDialog() override;
  void OnOK() override;
  void OnCancel() override;
  DECLARE_MESSAGE_MAP()

 private:
  enum class Operation { kUpload, kRemoval, kIndex };

  // The hourglass while it lives, wherever the mouse goes while messages are pumped.
  class Hourglass {
   public:
    explicit Hourglass(CFtpUploadFolderDlg& dialog);
    ~Hourglass() { m_dialog.m_pWaitCursor = m_pOuter; }
    Hourglass(const Hourglass&) = delete;
    Hourglass& operator=(const Hourglass&) = delete;

   private:
    CWaitCursor m_cursor;
    CFtpUploadFolderDlg& m_dialog;
    CWaitCursor* m_pOuter;
  };

  // The connection: ftp_upload_folder_dlg.cpp
  void OnConnect();
  void OnDisconnect();
  void OnRefresh();
  void OnByte();
  void OnAscii();
  void OnTimer(UINT_PTR id);
  void OnDestroy();
  LRESULT OnSetCursor(WPARAM wParam, LPARAM lParam);
  void Connect();
  int LogIn();
  void Disconnect();
  void ChooseTransferType();
  void EnterRemoteFolder();
  void Refresh();
  void FillList();
  void NoticeLostConnection();
  bool MayBegin(int command);
  void FinishConversation();
  void Exit();

  // The long operations: ftp_upload_folder_dlg_operations.cpp
  void OnUpload();
  void OnRemove();
  void OnUpdateRemoteIndex();
  void OnAbort();
  bool AskToStop();
  bool EntersRemoteFolder(const std::string& name);
  void Upload(const std::string& folder);
  int CountFiles(const std::string& folder);
  void AskAndRemove(const std::string& name);
  void Remove(const std::string& name);
  void UpdateRemoteIndex();
  std::vector<RemoteRow> Rows() const;
  bool SendIndexPage();
  void BeginOperation(Operation operation);
  void EndOperation(Operation operation);
  void ShowCaption();
  void ShowUploadReport(int uploaded, int total);

  // PublishHost
  bool IsAborted() override;
  bool IsLeaving() override;
  void PumpMessages() override;
  void SetProgressRange(int count) override;
  void SetProgressPosition(int position) override;
  int ProgressPosition() override;
  void SetProgressCaption(const std::string& caption) override;
  void SetStatus(const std::string& text) override;

  // The controls: ftp_upload_folder_dlg_setup.cpp
  void SubclassControls();
  void AddColumns();
  void RestoreSettings();
  void ShowConnected(bool connected);
  void ShowState();
  void EnableControls(std::span<const int> ids, bool enable);
  int Ask(const std::string& text, UINT type);
  void Tell(const std::string& text, UINT icon);

  std::string m_webUrl;
  const std::string m_localFolder;
  std::string m_host;
  std::string m_remoteFolder;
  std::int32_t m_bAbort = 0;
  CFtpUploadClient m_ftp;
  FtpRemoteServer m_server;
  SystemFiles m_files;
  std::vector<CRemoteDataEntry> m_entries;

  TProgressTimeToComplete m_progress;
  CListCtrl m_list;
  CMFCEditBrowseCtrl m_dataFolder;
  CMFCLinkCtrl m_check;
  CToolTipCtrl m_toolTips;

  bool m_bConnected = false;  // as the controls show it
  bool m_bBusy = false;       // talking to the server
  bool m_bOperation = false;  // one that Abort stops
  bool m_bKeepingAlive = false;
  bool m_bSendingPage = false;  // which nothing may stop
  bool m_bBoxIsOpen = false;
  // What the end of the conversation brings.
  bool m_bCloseAsked = false;
  bool m_bDisconnectAsked = false;
  bool m_bLossUntold = false;
  int m_nPostponed = 0;  // the number of a button
  CWaitCursor* m_pWaitCursor = nullptr;
  bool m_bCaptionStale = false;  // the progress bar shows an older one
  ULONGLONG m_nCaptionShown = 0;
};

#endif  // MOSAICON_PUBLISH_FTP_UPLOAD_FOLDER_DLG_H_
