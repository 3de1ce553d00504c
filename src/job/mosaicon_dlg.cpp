// The main dialog: its commands and its end.
#include "job/mosaicon_dlg.h"

#include <utility>

#include "job/tool_items.h"
#include "kvtools/flag_guard.h"
#include "kvtools/kvtools.h"
#include "kvtools/split_path.h"
#include "resources/resource.h"

namespace {

constexpr DWORD kAbortPollMilliseconds = 100;
// The system keeps the lower four bits of its commands for itself.
constexpr UINT kSystemCommandMask = 0xFFF0;

// Ends the item of a global while the window is going: nothing is pumped any more. The item's thread
// may wait for the progress bar, though, so what other threads send is let through.
template <class Item>
void AbortAndWait(std::atomic<Item*>& global) {
  AbortItem(global);
  while (global != nullptr) {
    MSG message;
    PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    Sleep(kAbortPollMilliseconds);
  }
}

}  // namespace

BEGIN_MESSAGE_MAP(CMosaiconDlg, CDialogEx)
ON_BN_CLICKED(IDC_START, CMosaiconDlg::StartJob)
ON_BN_CLICKED(IDC_CANCEL_JOB, CMosaiconDlg::AbortJob)
ON_BN_CLICKED(IDC_PICK_FOLDER, CMosaiconDlg::OnPickFolder)
ON_BN_CLICKED(IDC_WEB_OUTPUT, CMosaiconDlg::OnWebOutput)
ON_BN_CLICKED(IDC_SHOW_FINISHED_MAP, CMosaiconDlg::OnShowFinishedMap)
ON_BN_CLICKED(IDC_TILES_EXACT, CMosaiconDlg::OnTiles)
ON_BN_CLICKED(IDC_TILES_SMALL, CMosaiconDlg::OnTiles)
ON_BN_CLICKED(IDC_HELP_WEB_SERVER, CMosaiconDlg::OnHelpWebServer)
ON_BN_CLICKED(IDC_HELP_INPUT_OUTPUT, CMosaiconDlg::OnHelpInputOutput)
ON_BN_CLICKED(IDC_ABOUT, CMosaiconDlg::OnAbout)
ON_BN_CLICKED(IDC_UPLOAD, CMosaiconDlg::OnUpload)
ON_BN_CLICKED(IDC_EXIT, CMosaiconDlg::OnExit)
ON_EN_KILLFOCUS(IDC_ORTHOPHOTO, CMosaiconDlg::OnOrthophotoLeft)
ON_REGISTERED_MESSAGE(g_nOrthoPathMessage, CMosaiconDlg::OnOrthoPath)
ON_MESSAGE(kScanTypedPathMessage, CMosaiconDlg::OnScanTypedPath)
ON_MESSAGE(WM_DPICHANGED, CMosaiconDlg::OnDpiChanged)
ON_WM_DROPFILES()
ON_WM_SYSCOMMAND()
ON_WM_CLOSE()
ON_WM_DESTROY()
END_MESSAGE_MAP()

CMosaiconDlg::CMosaiconDlg(std::string strInputList, const std::string& programPath, DialogOpener& opener)
    : CDialogEx(IDD_MOSAICON),
      m_strInputList(std::move(strInputList)),
      m_strProgramPath(programPath),
      m_opener(opener),
      m_taskbar(m_taskbarButton),
      m_progress(m_taskbar),
      m_tilerLog(m_files, m_environment, "mosaicon", GetCurrentProcessId()),
      m_runner(&m_progress, m_tilerLog.Path()),
      m_driver(*this, m_runner, m_files, m_steps, m_environment, programPath) {}

void CMosaiconDlg::StartJob() {
  const FlagGuard running(m_bJobRunning);
  ScanForJob();
  if (m_bClosed) return;
  m_driver.StartJob(ReadForm(), m_vOrthophotos);
}

JobSettings CMosaiconDlg::ReadForm() const {
  JobSettings settings;
  settings.inputPath = m_orthophoto.GetWindowText();
  settings.webOutput = IsDlgButtonChecked(IDC_WEB_OUTPUT) != FALSE;
  settings.targetUrl = GetDlgItemText(IDC_TARGET_URL);
  settings.googleApiKey = GetDlgItemText(IDC_GOOGLE_KEY);
  settings.transparency = m_transparency.GetColor();
  settings.resampling = static_cast<int>(SendDlgItemMessageA(m_hWnd, IDC_RESAMPLING, CB_GETCURSEL, 0, 0));
  settings.showFinishedMap = IsDlgButtonChecked(IDC_SHOW_FINISHED_MAP) != FALSE;
  settings.tiles = ChosenTiles();
  settings.mapTitle = GetDlgItemText(IDC_MAP_TITLE);
  settings.targetFolder = m_targetFolder.GetWindowText();
  return settings;
}

// Only the tiling script is aborted: the other two tools are done soon.
void CMosaiconDlg::AbortJob() {
  if (g_pTilesJob == nullptr || m_bAborting) return;
  const FlagGuard aborting(m_bAborting);
  if (MessageBox("Do you really want to abort current process?", MB_YESNO | MB_ICONQUESTION) == IDNO) return;
  AbortItem(g_pTilesJob);
  while (g_pTilesJob != nullptr) {
    KVT_PumpMessages();
    Sleep(kAbortPollMilliseconds);
  }
  DestroyWorkQueue();
  m_bAbort = 1;
}

// Enter in a field: takes what was typed there.
void CMosaiconDlg::OnOK() {
  if (!m_bJobRunning) ScanTypedPath();
}

// Escape never closes the window, which may hold a form that took a while to fill in.
void CMosaiconDlg::OnCancel() {
  AbortJob();
}

void CMosaiconDlg::OnExit() {
  Close(IDOK);
}

void CMosaiconDlg::OnClose() {
  if (!IsWindowEnabled(m_hWnd)) {
    // A question is open; it comes first.
    SetForegroundWindow(GetLastActivePopup(m_hWnd));
  } else {
    Close(IDCANCEL);
  }
}

// In the middle of a job the window must go at once: ending the modal loop would let the job run on
// to its end behind a window that is not there.
void CMosaiconDlg::Close(int result) {
  m_bClosed = true;
  if (m_bJobRunning) {
    DestroyWindow();
  } else {
    EndDialog(result);
  }
}

void CMosaiconDlg::OnDestroy() {
  SavePlace();
  m_bClosed = true;
  m_progress.StopPumping();
  AbortAndWait(g_pTilesJob);
  AbortAndWait(g_pTranslateJob);
  AbortAndWait(g_pWarpJob);
  DestroyWorkQueue();
  m_icons.DestroyAll();
  m_taskbarButton.Release();
  Default();
}

void CMosaiconDlg::OnAbout() {
  m_opener.ShowAbout();
}

void CMosaiconDlg::OnUpload() {
  m_opener.ShowUpload(GetDlgItemText(IDC_TARGET_URL), m_targetFolder.GetWindowText());
}

void CMosaiconDlg::OnSysCommand(UINT id, LPARAM /*lParam*/) {
  if ((id & kSystemCommandMask) == IDM_ABOUTBOX) {
    OnAbout();
  } else {
    Default();
  }
}

LRESULT CMosaiconDlg::OnDpiChanged(WPARAM /*wParam*/, LPARAM /*lParam*/) {
  const LRESULT result = Default();
  m_icons.ShowInCaption(m_hWnd, kProgramIcon);
  ShowButtonIcons();
  return result;
}

void CMosaiconDlg::OnWebOutput() {
  EnableWindow(GetDlgItem(IDC_TARGET_URL), IsDlgButtonChecked(IDC_WEB_OUTPUT));
}

void CMosaiconDlg::OnShowFinishedMap() {
  SaveShowFinishedMap(IsDlgButtonChecked(IDC_SHOW_FINISHED_MAP) != FALSE);
}

tiler::TileFormat CMosaiconDlg::ChosenTiles() const {
  return IsDlgButtonChecked(IDC_TILES_SMALL) ? tiler::TileFormat::kAuto : tiler::TileFormat::kPng;
}

void CMosaiconDlg::OnTiles() {
  SaveTiles(ChosenTiles());
  ShowSummary();
}

void CMosaiconDlg::OnHelpWebServer() {
  OpenTutorial("Setup a simple Web Server for ZPD datasets");
}

void CMosaiconDlg::OnHelpInputOutput() {
  OpenTutorial("MOS_InputOutput");
}

// The shell tells the user when there is no such document, or no program to show it.
void CMosaiconDlg::OpenTutorial(const char* name) {
  const PathParts program = SplitPath(m_strProgramPath);
  const std::string path = JoinPath(program.drive, program.directory + "tutorial\\", name, "pdf");
  ShellExecuteA(m_hWnd, "open", path.c_str(), nullptr, "", SW_SHOWMAXIMIZED);
}
