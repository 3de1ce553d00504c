#include "mfc/dialog_controls.h"

namespace afx {

void CreateToolTips(CToolTipCtrl& toolTips, CWnd& dialog, std::span<const ControlTip> tips) {
  toolTips.Create(&dialog);
  for (const ControlTip& tip : tips) toolTips.AddTool(dialog.GetDlgItem(tip.id), tip.text);
}

void LeaveDisabledControl(const CWnd& dialog, HWND focusBefore, int fallback) {
  if (focusBefore == nullptr || !IsChild(dialog.GetSafeHwnd(), focusBefore) || IsWindowEnabled(focusBefore)) {
    return;
  }
  dialog.SendMessage(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(dialog.GetDlgItem(fallback)), TRUE);
}

}  // namespace afx
