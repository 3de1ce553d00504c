#include "app/about_dlg.h"

#include "app/crash_reporting.h"
#include "app/user_data_dlg.h"
#include "kvtools/kvtools.h"
#include "maker.h"
#include "resources/resource.h"

namespace {

constexpr char kGdal2TilesPage[] = "https://gdal.org/programs/gdal2tiles.html";
constexpr int kVersionBuffer = 64;

void SetUpLink(CMFCLinkCtrl& link, UINT id, CWnd* parent, const std::string& url) {
  link.SubclassDlgItem(id, parent);
  link.SetURL(url);
  link.SetTooltip(url);
  link.SizeToContent();
}

}  // namespace

BEGIN_MESSAGE_MAP(CAboutDlg, CDialogEx)
ON_BN_CLICKED(IDC_CHANGE_USER_DATA, CAboutDlg::OnChangeUserData)
END_MESSAGE_MAP()

CAboutDlg::CAboutDlg(CWnd* parent) : CDialogEx(IDD_ABOUTBOX, parent) {}

BOOL CAboutDlg::OnInitDialog() {
  CDialogEx::OnInitDialog();
  char version[kVersionBuffer] = "";
  KVT_GetVersionInfo(version, kVersionBuffer);
  SetDlgItemText(IDC_VERSION, std::string("Mosaicon ver. ") + version);
  SetUpLink(m_makerWeb, IDC_MAKER_WEB, this, kMakerWebAddress);
  SetUpLink(m_makerEmail, IDC_MAKER_EMAIL, this, std::string("mailto:") + kContactEmail);
  SetUpLink(m_gdal2Tiles, IDC_GDAL2TILES_PAGE, this, kGdal2TilesPage);
  return TRUE;
}

void CAboutDlg::OnChangeUserData() {
  ShowUserDataInReports(ShowUserDataDialog(this));
}
