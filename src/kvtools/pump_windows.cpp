#include <windows.h>

#include "kvtools/kvtools.h"

namespace {

constexpr DWORD kIdleWaitMilliseconds = 10;

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
    TranslateMessage(&message);
    DispatchMessageA(&message);
    dispatched = true;
  }
  if (!dispatched) {
    MsgWaitForMultipleObjectsEx(0, nullptr, kIdleWaitMilliseconds, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  }
}
