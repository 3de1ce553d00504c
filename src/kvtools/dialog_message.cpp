#include "kvtools/dialog_message.h"

namespace {

// Of the hosts of controls; Windows has no header for it.
constexpr UINT kForwardMessage = 0x037F;

// The control of the dialog that window is, or is part of; null when it is of another window.
HWND ControlOf(HWND dialog, HWND window) {
  if (!IsChild(dialog, window)) return nullptr;
  while (GetAncestor(window, GA_PARENT) != dialog) window = GetAncestor(window, GA_PARENT);
  return window;
}

bool IsTakenByItsControl(HWND dialog, MSG& message) {
  if (message.message < WM_KEYFIRST || message.message > WM_KEYLAST) return false;
  const HWND control = ControlOf(dialog, message.hwnd);
  return control != nullptr &&
         SendMessageA(control, kForwardMessage, 0, reinterpret_cast<LPARAM>(&message)) != 0;
}

}  // namespace

bool TranslateDialogMessage(HWND dialog, MSG& message) {
  return IsTakenByItsControl(dialog, message) || IsDialogMessageA(dialog, &message);
}
