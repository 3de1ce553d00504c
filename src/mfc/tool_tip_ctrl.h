// The framework's tool tips: one window that tells about the controls of a dialog, when the mouse rests
// on them. Long texts are wrapped, and stay as long as the system allows.
//
// A disabled control gets no mouse messages, hence its tip does not show.
//
// User-interface thread. The window goes with its parent, or with this object.
#ifndef MOSAICON_MFC_TOOL_TIP_CTRL_H_
#define MOSAICON_MFC_TOOL_TIP_CTRL_H_

#include "mfc/wnd.h"

class CToolTipCtrl : public CWnd {
 public:
  CToolTipCtrl() = default;
  ~CToolTipCtrl() override;

  BOOL Create(CWnd* parent);
  // Tells text about window, a control of the parent, until one of the two is gone. A second text
  // for the same window replaces the first.
  BOOL AddTool(CWnd* window, const std::string& text);
  BOOL AddTool(HWND window, const std::string& text);

 protected:
  DECLARE_MESSAGE_MAP()

 private:
  LRESULT OnDpiChanged(WPARAM wParam, LPARAM lParam);
  void WrapLines();
};

#endif  // MOSAICON_MFC_TOOL_TIP_CTRL_H_
