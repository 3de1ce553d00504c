// CUT_WSClient: the hidden window through which a client can be told something by a message.
#include <windows.h>

#include "net/error_codes.h"
#include "net/ws_client.h"

namespace {

constexpr char kWindowClass[] = "CUT_WSClient";
constexpr UINT kSetClientMessage = 1151;
constexpr UINT kNotify1Message = 1152;
constexpr UINT kNotify2Message = 1153;
constexpr UINT kNotify3Message = 1154;

LRESULT CALLBACK NotifyProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
  if (message == WM_CREATE || message == kSetClientMessage) {
    SetWindowLongPtrA(window, 0, message == kSetClientMessage ? lParam : 0);
    return 0;
  }
  auto* const client = reinterpret_cast<CUT_WSClient*>(GetWindowLongPtrA(window, 0));
  if (client == nullptr) return DefWindowProcA(window, message, wParam, lParam);
  switch (message) {
    case kNotify1Message:
      client->OnNotification1(LOWORD(lParam), HIWORD(lParam));
      return 0;
    case kNotify2Message:
      client->OnNotification2(HIWORD(lParam));
      return 0;
    case kNotify3Message:
      client->OnNotification3(HIWORD(lParam));
      return 0;
    default:
      return DefWindowProcA(window, message, wParam, lParam);
  }
}

bool RegisterNotifyClass(HINSTANCE module) {
  WNDCLASSA windowClass = {};
  windowClass.lpfnWndProc = NotifyProcedure;
  windowClass.cbWndExtra = sizeof(void*);  // the client
  windowClass.hInstance = module;
  windowClass.lpszClassName = kWindowClass;
  return RegisterClassA(&windowClass) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

}  // namespace

int CUT_WSClient::CreateNotifyWindow(void* module) {
  if (m_hNotifyWindow != nullptr) return OnError(kNetSuccess);
  const auto instance = static_cast<HINSTANCE>(module);
  if (!RegisterNotifyClass(instance)) return OnError(kNetFailed);
  const HWND window =
      CreateWindowExA(0, kWindowClass, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, instance, nullptr);
  if (window == nullptr) return OnError(kNetFailed);
  m_hNotifyWindow = window;
  SendMessageA(window, kSetClientMessage, 0, reinterpret_cast<LPARAM>(this));
  return OnError(kNetSuccess);
}

void CUT_WSClient::DestroyNotifyWindow() {
  if (m_hNotifyWindow != nullptr) DestroyWindow(static_cast<HWND>(m_hNotifyWindow));
}
