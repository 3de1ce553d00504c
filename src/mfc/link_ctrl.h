// The framework's link: an owner-drawn button of a dialog template that looks like a link and opens a
// web page or a letter in the program that the user has chosen for these. A click, Space and Enter
// open it.
//
// User-interface thread. The object must live as long as the window.
#ifndef MOSAICON_MFC_LINK_CTRL_H_
#define MOSAICON_MFC_LINK_CTRL_H_

#include <memory>

#include "mfc/tool_tip_ctrl.h"
#include "mfc/wnd.h"

class CMFCLinkCtrl : public CWnd {
 public:
  // What to open: http, https or mailto. Without it, the text of the control.
  void SetURL(const std::string& url) { m_strURL = url; }
  void SetTooltip(const std::string& text);
  // Makes the control as large as its text. Returns the new size.
  SIZE SizeToContent();

 protected:
  // Opens url, of which the beginning has been checked. FALSE when the system has no program for it.
  virtual BOOL OpenURL(const std::string& url);
  void DrawItem(const DRAWITEMSTRUCT& item) override;
  DECLARE_MESSAGE_MAP()

 private:
  LRESULT OnSetCursor(WPARAM wParam, LPARAM lParam);
  LRESULT OnGetDlgCode(WPARAM wParam, LPARAM lParam);
  LRESULT OnKeyDown(WPARAM wParam, LPARAM lParam);
  LRESULT OnRelease(WPARAM wParam, LPARAM lParam);
  void Open();

  std::string m_strURL;
  std::unique_ptr<CToolTipCtrl> m_pToolTip;
};

#endif  // MOSAICON_MFC_LINK_CTRL_H_
