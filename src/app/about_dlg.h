// The About box.
#ifndef MOSAICON_APP_ABOUT_DLG_H_
#define MOSAICON_APP_ABOUT_DLG_H_

#include "mfc/dialog.h"
#include "mfc/link_ctrl.h"

class CAboutDlg : public CDialogEx {
 public:
  explicit CAboutDlg(CWnd* parent = nullptr);

 protected:
  BOOL OnInitDialog() override;
  DECLARE_MESSAGE_MAP()

 private:
  void OnChangeUserData();

  CMFCLinkCtrl m_makerWeb;
  CMFCLinkCtrl m_makerEmail;
  CMFCLinkCtrl m_gdal2Tiles;
};

#endif  // MOSAICON_APP_ABOUT_DLG_H_
