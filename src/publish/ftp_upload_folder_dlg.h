// The dialog that publishes a finished output folder by FTP: connects, shows the remote folder, uploads
// the local one into it and removes remote ones.
//
// Everything runs in the handlers of its buttons, in the thread of the user interface. While a handler
// talks to the server it pumps messages, so others may be called inside it; only the Abort button, the
// close button of the frame and the timer do anything then, and none of them talks to the server.
//
// The password is kept as plain text in the user's profile and sent unencrypted, as FTP does.
#ifndef MOSAICON_PUBLISH_FTP_UPLOAD_FOLDER_DLG_H_
#define MOSAICON_PUBLISH_FTP_UPLOAD_FOLDER_DLG_H_

#include <cstdint>
#include <span>
#include <string>
#include <vector>

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
#include "publish/windows_folders.h"

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
  void ChooseTransferType();
  void EnterRemoteFolder();
  void FillList();
  void NoticeLostConnection();
  void Exit();
  bool AskToStop();
  void CloseIfAsked();

  // The long operations: ftp_upload_folder_dlg_operations.cpp
  void OnUpload();
  void OnRemove();
  void OnUpdateRemoteIndex();
  void OnAbort();
  void Upload(const std::string& folder);
  bool Remove(const std::string& name);
  void BeginOperation(Operation operation);
  void EndOperation(Operation operation);
  void ShowCaption();
  void ShowUploadReport(int uploaded, int total);

  // PublishHost
  bool IsAborted() override;
  bool IsLeaving() override { return m_bCloseAsked; }
  void PumpMessages() override;
  void SetProgressRange(int count) override;
  void SetProgressPosition(int position) override;
  int ProgressPosition() override;
  void SetProgressCaption(const std::string& caption) override;
  void SetStatus(const std::string& text) override;

  // The controls: ftp_upload_folder_dlg_setup.cpp
  void SubclassControls();
  void AddColumns();
  void AddToolTips();
  void RestoreSettings();
  void ShowConnected(bool connected);
  void EnableControls(std::span<const int> ids, bool enable);
  void KeepFocus(HWND focusBefore, int fallback);
  int Tell(const std::string& text, UINT icon) const;

  std::string m_webUrl;
  const std::string m_localFolder;
  std::string m_host;
  std::string m_remoteFolder;
  std::int32_t m_bAbort = 0;
  CFtpUploadClient m_ftp;
  FtpRemoteServer m_server;
  WindowsFolders m_folders;
  std::vector<CRemoteDataEntry> m_entries;

  TProgressTimeToComplete m_progress;
  CListCtrl m_list;
  CMFCEditBrowseCtrl m_dataFolder;
  CMFCLinkCtrl m_check;
  CToolTipCtrl m_toolTips;

  bool m_bConnected = false;   // as the controls show it
  bool m_bBusy = false;        // talking to the server
  bool m_bOperation = false;   // one that Abort stops
  bool m_bAsking = false;      // whether to stop it
  bool m_bCloseAsked = false;  // when the server is done with
  CWaitCursor* m_pWaitCursor = nullptr;
  bool m_bCaptionStale = false;  // the progress bar shows an older one
  ULONGLONG m_nCaptionShown = 0;
};

#endif  // MOSAICON_PUBLISH_FTP_UPLOAD_FOLDER_DLG_H_
