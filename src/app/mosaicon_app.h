// The application: starts up, runs the main dialog and ends. It also knows the dialogs that the main
// dialog opens without knowing them.
#ifndef MOSAICON_APP_MOSAICON_APP_H_
#define MOSAICON_APP_MOSAICON_APP_H_

#include "job/mosaicon_dlg.h"
#include "mfc/app.h"

class CMosaiconApp : public CWinAppEx, private DialogOpener {
 public:
  CMosaiconApp();
  // Everything happens here; always FALSE, because there is no message loop to enter.
  BOOL InitInstance() override;

 private:
  void ShowAbout() override;
  void ShowUpload(const std::string& webUrl, const std::string& localFolder) override;
  void RunMainDialog(const std::string& programPath);
};

#endif  // MOSAICON_APP_MOSAICON_APP_H_
