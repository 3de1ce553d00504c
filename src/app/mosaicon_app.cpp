#include "app/mosaicon_app.h"

// After windows.h.
#include <commctrl.h>

#include <cstdio>

#include "app/about_dlg.h"
#include "app/crash_reporting.h"
#include "app/start_up_text.h"
#include "app/user_data_dlg.h"
#include "job/windows_gdal.h"
#include "job/windows_process.h"
#include "kvtools/kvtools.h"
#include "publish/ftp_upload_folder_dlg.h"
#include "resources/resource.h"

namespace {

constexpr DWORD kAllControlClasses = 0xFF;
constexpr int kSplashMilliseconds = 1000;
constexpr int kVersionBuffer = 64;

CMosaiconApp theApp;

UserData AskForMissingUserData() {
  const UserData data = LoadUserData();
  return data.IsComplete() ? data : ShowUserDataDialog();
}

std::string ProgramVersion() {
  char version[kVersionBuffer] = "";
  KVT_GetVersionInfo(version, kVersionBuffer);
  return ShortVersion(version);
}

}  // namespace

CMosaiconApp::CMosaiconApp() {
  m_strAppName = "Mosaicon";
}

BOOL CMosaiconApp::InitInstance() {
  const INITCOMMONCONTROLSEX controls = {sizeof controls, kAllControlClasses};
  InitCommonControlsEx(&controls);
  CWinAppEx::InitInstance();

  const UserData user = AskForMissingUserData();
  const std::string programPath = GetProgramPath();
  std::string message;
  if (!InstallCrashReporting(programPath, ProgramVersion(), user, message)) {
    std::printf("%s\n", message.c_str());
    std::fflush(stdout);
    AfxMessageBox(message);
    return FALSE;
  }

  AfxEnableControlContainer();
  InitShellManager();
  // The visual manager is Windows itself: the manifest chooses its themed controls, and nothing else draws.
  SetRegistryKey("Mosaicon");
  SetUpGdal(programPath);
  KVT_ShowSplashScreen(IDB_SPLASH, kSplashMilliseconds);
  RunMainDialog(programPath);
  return FALSE;
}

void CMosaiconApp::RunMainDialog(const std::string& programPath) {
  CMosaiconDlg dialog(InputListFromCommandLine(GetCommandLineA(), programPath), programPath, *this);
  m_pMainWnd = &dialog;
  dialog.DoModal();
  // The dialog has given back everything that it had of the shell when its window was destroyed.
  DeleteShellManager();
  m_pMainWnd = nullptr;
}

void CMosaiconApp::ShowAbout() {
  CAboutDlg dialog(m_pMainWnd);
  dialog.DoModal();
}

void CMosaiconApp::ShowUpload(const std::string& webUrl, const std::string& localFolder) {
  CFtpUploadFolderDlg dialog(webUrl, localFolder, m_pMainWnd);
  dialog.DoModal();
}
