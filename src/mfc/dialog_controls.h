// What dialogs do with their controls beyond what the framework has. User-interface thread.
#ifndef MOSAICON_MFC_DIALOG_CONTROLS_H_
#define MOSAICON_MFC_DIALOG_CONTROLS_H_

#include <span>

#include "mfc/tool_tip_ctrl.h"

namespace afx {

struct ControlTip {
  int id;
  const char* text;
};

// Creates toolTips for a dialog, with these texts about its controls.
void CreateToolTips(CToolTipCtrl& toolTips, CWnd& dialog, std::span<const ControlTip> tips);

// After some controls were disabled: one that had the focus before would swallow the keyboard. If it is one
// of them, the control with the id fallback gets it.
void LeaveDisabledControl(const CWnd& dialog, HWND focusBefore, int fallback);

}  // namespace afx

#endif  // MOSAICON_MFC_DIALOG_CONTROLS_H_
