#include "mfc/dpi.h"

#include "handles/drawing_handles.h"

namespace {

using GetDpiForWindowFunction = UINT(WINAPI*)(HWND);

// Windows 10 has it; older systems have one resolution for all screens.
GetDpiForWindowFunction FindGetDpiForWindow() {
  const HMODULE user = GetModuleHandleA("user32.dll");
  if (user == nullptr) return nullptr;
  return reinterpret_cast<GetDpiForWindowFunction>(
      reinterpret_cast<void*>(GetProcAddress(user, "GetDpiForWindow")));
}

}  // namespace

namespace afx {

UINT GetWindowDpi(HWND window) {
  static const GetDpiForWindowFunction getDpiForWindow = FindGetDpiForWindow();
  const UINT dpi = getDpiForWindow != nullptr && window != nullptr ? getDpiForWindow(window) : 0;
  if (dpi != 0) return dpi;
  return static_cast<UINT>(GetDeviceCaps(WindowContext(nullptr).Get(), LOGPIXELSX));
}

int Scale(int pixels, UINT dpi) {
  return MulDiv(pixels, static_cast<int>(dpi), USER_DEFAULT_SCREEN_DPI);
}

}  // namespace afx
