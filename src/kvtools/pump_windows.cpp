#include <windows.h>

#include "kvtools/dialog_message.h"
#include "kvtools/kvtools.h"

namespace {

constexpr DWORD kIdleWaitMilliseconds = 10;
// A caller that comes back sooner had nothing else to do.
constexpr LONGLONG kIdleMicroseconds = 500;

// Microseconds of a clock that only runs forward.
LONGLONG Now() {
  LARGE_INTEGER frequency;
  LARGE_INTEGER count;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&count);
  return static_cast<LONGLONG>(static_cast<double>(count.QuadPart) * 1e6 /
                               static_cast<double>(frequency.QuadPart));
}

// The class of every dialog window.
bool IsDialog(HWND window) {
  return GetClassLongPtrA(window, GCW_ATOM) == reinterpret_cast<ULONG_PTR>(WC_DIALOG);
}

void Dispatch(MSG& message) {
  // Tab, Enter, Escape and access keys work in a dialog while its thread is busy pumping.
  const HWND root = message.hwnd != nullptr ? GetAncestor(message.hwnd, GA_ROOT) : nullptr;
  if (root != nullptr && IsDialog(root) && TranslateDialogMessage(root, message)) return;
  TranslateMessage(&message);
  DispatchMessageA(&message);
}

}  // namespace

void KVT_PumpMessages() {
  thread_local LONGLONG lastEnd = 0;
  const bool isIdle = Now() - lastEnd < kIdleMicroseconds;
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
  if (!dispatched && isIdle) {
    MsgWaitForMultipleObjectsEx(0, nullptr, kIdleWaitMilliseconds, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  }
  lastEnd = Now();
}
