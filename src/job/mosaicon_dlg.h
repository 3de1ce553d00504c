// The main dialog: the form of a job, its progress and its preview. It is the host of the batch
// driver: the whole job runs inside the handler of the Start button, which keeps the window alive by
// pumping messages. Every handler may therefore run in the middle of a job, and the window may even
// be closed there; the object lives until DoModal has returned.
#ifndef MOSAICON_JOB_MOSAICON_DLG_H_
#define MOSAICON_JOB_MOSAICON_DLG_H_

#include <string>
#include <vector>

#include "files/system_files.h"
#include "job/batch_driver.h"
#include "job/dialog_icons.h"
#include "job/edit_browse_ex.h"
#include "job/explorer_webbrowser.h"
#include "job/job_host.h"
#include "job/job_progress.h"
#include "job/taskbar_progress.h"
#include "job/tiler_log_file.h"
#include "job/windows_process.h"
#include "job/windows_taskbar_button.h"
#include "job/windows_tool_runner.h"
#include "mfc/color_button.h"
#include "mfc/dialog.h"
#include "mfc/edit_browse_ctrl.h"
#include "mfc/link_ctrl.h"
#include "mfc/tool_tip_ctrl.h"

// Posted when the field of the orthophoto path has lost the focus.
inline constexpr UINT kScanTypedPathMessage = WM_APP + 1;

// The icon of the program, by its resource name.
inline constexpr char kProgramIcon[] = "APPLICATION";

// What the main dialog opens without knowing it.
class DialogOpener {
 public:
  virtual ~DialogOpener() = default;
  virtual void ShowAbout() = 0;
  // The dialog that uploads localFolder, which will be served under webUrl.
  virtual void ShowUpload(const std::string& webUrl, const std::string& localFolder) = 0;
};

class CMosaiconDlg : public CDialogEx, private JobHost {
 public:
  // strInputList: paths joined by "|", or empty. programPath: the full path of the executable.
  // opener must outlive the dialog.
  CMosaiconDlg(std::string strInputList, const std::string& programPath, DialogOpener& opener);

 protected:
  BOOL OnInitDialog() override;
  // The gate for all that the window is told: mosaicon_dlg_gate.cpp.
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
  // Enter, Escape and the close button of the window's frame are three different things here.
  void OnOK() override;
  void OnCancel() override;
  DECLARE_MESSAGE_MAP()

 private:
  // Setting up: mosaicon_dlg_setup.cpp
  void AddAboutToSystemMenu();
  void SubclassControls();
  void CreatePreview();
  void RestoreForm();
  void RestorePlace();
  void SavePlace() const;

  // Commands: mosaicon_dlg.cpp
  void StartJob();
  void AbortJob();
  void OnExit();
  void OnAbout();
  void OnUpload();
  void OnWebOutput();
  void OnShowFinishedMap();
  void OnTiles();
  void OnHelpWebServer();
  void OnHelpInputOutput();
  void OnSysCommand(UINT id, LPARAM lParam);
  LRESULT OnDpiChanged(WPARAM wParam, LPARAM lParam);
  void OnClose();
  void Close(int result);
  void OnDestroy();
  void OpenTutorial(const char* name);
  JobSettings ReadForm() const;
  tiler::TileFormat ChosenTiles() const;

  // The gate: mosaicon_dlg_gate.cpp
  LRESULT WindowProcWhenClosed(UINT message, WPARAM wParam, LPARAM lParam);
  bool IsInTurn(UINT message, WPARAM wParam) const;
  void LockControls(bool locked);

  // The orthophotos: mosaicon_dlg_input.cpp
  LRESULT OnOrthoPath(WPARAM wParam, LPARAM lParam);
  void OnOrthophotoLeft();
  LRESULT OnScanTypedPath(WPARAM wParam, LPARAM lParam);
  void OnPickFolder();
  void OnDropFiles(HDROP drop);
  void SetFolderMode(bool folderMode);
  void ShowInputList(const std::string& inputList);
  void ShowInputPath(const std::string& path, bool folderMode);
  void ShowSummary();
  void Scan(const std::string& path, MessageSink& messages);
  bool ScanTypedPath();
  void ScanForJob();

  // The host of a job: mosaicon_dlg_host.cpp
  void ShowMessage(MessageIcon icon, const std::string& text) override;
  void WriteBackTargetUrl(const std::string& url) override;
  void WriteBackMapTitle(const std::string& title) override;
  void WriteBackTargetFolder(const std::string& folder) override;
  Answer AskYesNoCancel(const std::string& text) override;
  void SetBusy(bool busy) override;
  void SetProgressLabel(const std::string& text) override;
  void SetProgressRange(int lower, int upper) override;
  void SetProgressPosition(int percent) override;
  void NavigatePreview(const std::string& page) override;
  void PumpMessages() override;
  void ShowReport(const JobReport& report) override;
  bool IsAborted() const override { return m_bAbort != 0; }
  void SetAborted(bool aborted) override { m_bAbort = aborted ? 1 : 0; }
  bool IsClosed() const override { return m_bClosed; }
  void ShowButtonIcons();
  void ShowAnimation(bool busy);

  std::string m_strInputList;  // that the orthophotos come from; empty when they come from the field
  const std::string m_strProgramPath;
  DialogOpener& m_opener;

  CMFCEditBrowseCtrlEx m_orthophoto;
  CMFCEditBrowseCtrl m_targetFolder;
  CMFCColorButton m_transparency;
  CMFCLinkCtrl m_getGoogleKey;
  CMFCLinkCtrl m_checkUpdates;
  CExplorer_webbrowser m_preview;
  WindowsTaskbarButton m_taskbarButton;
  TaskbarProgress m_taskbar;
  CJobProgress m_progress;
  CToolTipCtrl m_toolTips;
  DialogIcons m_icons;

  std::vector<CTifData> m_vOrthophotos;  // the input list of the next job
  std::string m_strScannedPath;          // the text of the field that the list was made from
  int32_t m_bAbort = 0;                  // the job stops before the next orthophoto
  bool m_bBusy = false;                  // the controls are locked
  bool m_bJobRunning = false;            // the Start handler is on the stack
  bool m_bAborting = false;              // the handler of the cancel button is on the stack
  bool m_bClosed = false;                // the window is gone, or going: it handles nothing any more

  SystemFiles m_files;
  RealFinishingSteps m_steps;
  WindowsEnvironment m_environment;
  TilerLogFile m_tilerLog;
  WindowsToolRunner m_runner;
  BatchDriver m_driver;
};

#endif  // MOSAICON_JOB_MOSAICON_DLG_H_
