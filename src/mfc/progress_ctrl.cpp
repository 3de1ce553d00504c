#include "mfc/progress_ctrl.h"

// After windows.h.
#include <commctrl.h>

void CProgressCtrl::SetRange(short lower, short upper) {
  SendMessage(PBM_SETRANGE, 0, MAKELPARAM(lower, upper));
}

void CProgressCtrl::SetRange32(int lower, int upper) {
  SendMessage(PBM_SETRANGE32, static_cast<WPARAM>(lower), upper);
}

void CProgressCtrl::GetRange(int& lower, int& upper) const {
  PBRANGE range = {};
  SendMessage(PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
  lower = range.iLow;
  upper = range.iHigh;
}

int CProgressCtrl::SetPos(int position) {
  return static_cast<int>(SendMessage(PBM_SETPOS, static_cast<WPARAM>(position)));
}

int CProgressCtrl::GetPos() const {
  return static_cast<int>(SendMessage(PBM_GETPOS));
}
