#include <windows.h>

#include "kvtools/kvtools.h"

namespace {

constexpr DWORD kIdleWaitMilliseconds = 10;

// The class of every dialog window.
bool IsDialog(HWND window) {
  return GetClassLongPtrA(window, GCW_ATOM) == reinterpret_cast<ULONG_PTR>(WC_DIALOG);
}

void Dispatch(MSG& message) {
  // Tab, Enter, Escape and access keys work in a dialog while its thread is busy pumping.
  const HWND root = message.hwnd != nullptr ? GetAncestor(message.hwnd, GA_ROOT) : nullptr;
  if (root != nullptr && IsDialog(root) && IsDialogMessageA(root, &message)) return;
  TranslateMessage(&message);
  DispatchMessageA(&message);
}

}  // namespace

void KVT_PumpMessages() {
  bool dispatched = false;
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      // The outer loop must see it too. Stop here, or it would be fetched again at once.
      PostQuitMessage(static_cast<int>(message.wParam));
      Sleep(kIdleWaitMilliseconds);
      return;
    }
    Dispatch(message);
    dispatched = true;
  }
  if (!dispatched) {
    MsgWaitForMultipleObjectsEx(0, nullptr, kIdleWaitMilliseconds, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  }
}
