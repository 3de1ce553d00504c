// The web browser control of the system, as the preview uses it. User-interface thread; the program
// has called AfxEnableControlContainer.
#ifndef MOSAICON_JOB_EXPLORER_WEBBROWSER_H_
#define MOSAICON_JOB_EXPLORER_WEBBROWSER_H_

#include <oaidl.h>

#include <string>

#include "mfc/wnd.h"

// Of the WebBrowser control.
inline constexpr char kWebBrowserClass[] = "{8856F961-340A-11D0-A96B-00C04FD705A2}";

class CExplorer_webbrowser : public CWnd {
 public:
  ~CExplorer_webbrowser() override;

  // Makes the control, with the window and the id of its own, in rectangle (client coordinates of
  // parent). FALSE when this system has no such control; nothing is left of it then.
  BOOL CreateControl(const char* classId, const RECT& rectangle, CWnd* parent, UINT id);

  // Shows a page, by its path or URL; false when the control refuses it at once. Does nothing without
  // a control.
  bool Navigate(const std::string& url);
};

// The same with a control in hand.
bool NavigateControl(IDispatch& control, const std::string& url);

#endif  // MOSAICON_JOB_EXPLORER_WEBBROWSER_H_
