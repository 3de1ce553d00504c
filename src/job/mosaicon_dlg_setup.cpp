// The main dialog: what happens before it is shown, and its place on the screen.
#include "job/input_list.h"
#include "job/mosaicon_dlg.h"
#include "job/window_place.h"
#include "maker.h"
#include "mfc/app.h"
#include "mfc/dialog_controls.h"
#include "resources/resource.h"

namespace {

constexpr char kGoogleKeyPage[] = "https://console.cloud.google.com/google/maps-apis/credentials";
constexpr char kImageFilter[] = "GeoTIFF (*.tif;*.tiff)|*.tif;*.tiff|All files (*.*)|*.*||";
constexpr int kTextBuffer = 256;

constexpr afx::ControlTip kToolTips[] = {
    {IDC_ORTHOPHOTO, "The orthophoto, or the folder with the orthophotos. You may also drop them here."},
    {IDC_PICK_FOLDER, "Take every *.tif orthophoto of a folder instead of one file"},
    {IDC_MAP_TITLE, "The title of the maps; blanks become \"_\""},
    {IDC_TARGET_FOLDER, "The folder that the tiles are written to"},
    {IDC_WEB_OUTPUT, "Also make a KML whose links point to the place on the web"},
    {IDC_TARGET_URL, "The address under which the target folder will be found on the web"},
    {IDC_GOOGLE_KEY, "With a key, a Google Maps page is made and shown"},
    {IDC_TRANSPARENCY, "The color of the orthophoto that becomes transparent"},
    {IDC_RESAMPLING, "How pixels are joined to those of smaller scales"},
    {IDC_TILES_EXACT, "Every pixel as it was computed; the map needs about six times the space"},
    {IDC_TILES_SMALL, "JPEG where nothing is transparent: quicker to upload and to show"},
    {IDC_SHOW_FINISHED_MAP, "Without a Google API key, the preview shows the map itself"},
    {IDC_HELP_INPUT_OUTPUT, "What goes in and what comes out"},
    {IDC_HELP_WEB_SERVER, "How to publish the result with a web server of your own"},
    {IDC_START, "Make the tiles"},
    {IDC_CANCEL_JOB, "Cancel the running job"},
    {IDC_UPLOAD, "Publish the target folder by FTP"},
    {IDC_ABOUT, "Version and contacts"},
    {IDC_EXIT, "Close Mosaicon"},
};

}  // namespace

BOOL CMosaiconDlg::OnInitDialog() {
  CDialogEx::OnInitDialog();
  m_icons.ShowInCaption(m_hWnd, kProgramIcon);
  AddAboutToSystemMenu();
  SubclassControls();
  CreatePreview();
  afx::CreateToolTips(m_toolTips, *this, kToolTips);
  // Those of a running job too: that is no time to find out that one is missing.
  for (const int icon : {IDI_START_BUSY, IDI_EXIT_BUSY, IDI_CANCELSMALL}) {
    m_icons.Load(m_hWnd, MAKEINTRESOURCEA(icon));
  }
  ShowButtonIcons();
  ShowInputList(MakeInputListFull(m_strInputList, m_files));
  RestoreForm();
  RestorePlace();
  DragAcceptFiles(m_hWnd, TRUE);
  m_taskbarButton.Create(m_hWnd);
  return TRUE;
}

void CMosaiconDlg::AddAboutToSystemMenu() {
  char text[kTextBuffer];
  if (LoadStringA(AfxGetInstanceHandle(), IDS_ABOUTBOX, text, kTextBuffer) == 0) return;
  const HMENU menu = GetSystemMenu(m_hWnd, FALSE);
  AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
  AppendMenuA(menu, MF_STRING, IDM_ABOUTBOX, text);
}

void CMosaiconDlg::SubclassControls() {
  m_orthophoto.SubclassDlgItem(IDC_ORTHOPHOTO, this);
  m_targetFolder.SubclassDlgItem(IDC_TARGET_FOLDER, this);
  m_targetFolder.EnableFolderBrowseButton();
  m_transparency.SubclassDlgItem(IDC_TRANSPARENCY, this);
  m_transparency.EnableOtherButton("Other...");
  m_getGoogleKey.SubclassDlgItem(IDC_GET_GOOGLE_KEY, this);
  m_getGoogleKey.SetURL(kGoogleKeyPage);
  m_getGoogleKey.SetTooltip(kGoogleKeyPage);
  m_getGoogleKey.SizeToContent();
  m_checkUpdates.SubclassDlgItem(IDC_CHECK_UPDATES, this);
  m_checkUpdates.SetURL(kUpdateAddress);
  m_checkUpdates.SetTooltip("Get Mosaicon updates");
  m_checkUpdates.SizeToContent();
  m_progress.SubclassDlgItem(IDC_PROGRESS, this);
  for (const std::string& mode : ResamplingModes()) {
    SendDlgItemMessageA(m_hWnd, IDC_RESAMPLING, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(mode.c_str()));
  }
}

// The browser takes the place, and the id, of the text that stands there in the template.
void CMosaiconDlg::CreatePreview() {
  const HWND placeholder = GetDlgItem(IDC_PREVIEW);
  RECT rectangle;
  GetWindowRect(placeholder, &rectangle);
  MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT*>(&rectangle), 2);
  if (!m_preview.CreateControl(kWebBrowserClass, rectangle, this, IDC_PREVIEW)) return;
  SetWindowPos(m_preview.GetSafeHwnd(), placeholder, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  ::DestroyWindow(placeholder);
}

void CMosaiconDlg::RestoreForm() {
  const JobSettings settings = RestoreSettings();
  SetDlgItemText(IDC_TARGET_URL, settings.targetUrl);
  SetDlgItemText(IDC_GOOGLE_KEY, settings.googleApiKey);
  m_transparency.SetColor(settings.transparency);
  SendDlgItemMessageA(m_hWnd, IDC_RESAMPLING, CB_SETCURSEL, static_cast<WPARAM>(settings.resampling), 0);
  SetDlgItemText(IDC_MAP_TITLE, settings.mapTitle);
  m_targetFolder.SetWindowText(settings.targetFolder);
  CheckDlgButton(IDC_SHOW_FINISHED_MAP, settings.showFinishedMap);
  CheckRadioButton(m_hWnd, IDC_TILES_EXACT, IDC_TILES_SMALL,
                   settings.tiles == tiler::TileFormat::kAuto ? IDC_TILES_SMALL : IDC_TILES_EXACT);
  CheckDlgButton(IDC_WEB_OUTPUT, settings.webOutput);
  EnableWindow(GetDlgItem(IDC_TARGET_URL), settings.webOutput);
  ShowSummary();
}

void CMosaiconDlg::SetFolderMode(bool folderMode) {
  if (folderMode) {
    m_orthophoto.EnableFolderBrowseButton();
  } else {
    m_orthophoto.EnableFileBrowseButton("tif", kImageFilter);
  }
}

void CMosaiconDlg::RestorePlace() {
  CMFCEditBrowseCtrl::SetInitialFolder(LoadLastFolder());
  const auto saved = LoadWindowPlace();
  if (!saved) return;
  RECT window;
  GetWindowRect(m_hWnd, &window);
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfoA(MonitorFromPoint({saved->x, saved->y}, MONITOR_DEFAULTTONEAREST), &monitor);
  const RECT& area = monitor.rcWork;
  const ScreenPoint place = FitIntoWorkArea(*saved, window.right - window.left, window.bottom - window.top,
                                            {area.left, area.top, area.right, area.bottom});
  SetWindowPos(m_hWnd, nullptr, place.x, place.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void CMosaiconDlg::SavePlace() const {
  SaveLastFolder(CMFCEditBrowseCtrl::GetLastFolder());
  RECT window;
  // A window that is minimised stands somewhere else.
  if (!IsIconic(m_hWnd) && GetWindowRect(m_hWnd, &window)) SaveWindowPlace({window.left, window.top});
}
