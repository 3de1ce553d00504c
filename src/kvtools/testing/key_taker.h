// A control that is asked about the keys that come to it, as the host of a browser is.
#ifndef MOSAICON_KVTOOLS_TESTING_KEY_TAKER_H_
#define MOSAICON_KVTOOLS_TESTING_KEY_TAKER_H_

#include <windows.h>

#include <vector>

// A child of the dialog, and destroyed with that.
class KeyTaker {
 public:
  explicit KeyTaker(HWND dialog) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "KeyTaker";
    RegisterClassA(&windowClass);
    const HWND control = CreateWindowExA(0, "KeyTaker", "", WS_CHILD | WS_VISIBLE, 0, 0, 9, 9, dialog,
                                         nullptr, windowClass.hInstance, nullptr);
    SetWindowLongPtrA(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_hPart = CreateWindowExA(0, "Static", "", WS_CHILD | WS_VISIBLE, 0, 0, 9, 9, control, nullptr,
                              windowClass.hInstance, nullptr);
  }
  KeyTaker(const KeyTaker&) = delete;
  KeyTaker& operator=(const KeyTaker&) = delete;

  // The window within the control that the keys come to.
  HWND Part() const { return m_hPart; }

  std::vector<WPARAM> keys;  // that it was asked about
  WPARAM taken = 0;          // the one that it takes

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    constexpr UINT kForwardMessage = 0x037F;
    auto* taker = reinterpret_cast<KeyTaker*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (message != kForwardMessage) return DefWindowProcA(window, message, wParam, lParam);
    const auto& key = *reinterpret_cast<const MSG*>(lParam);
    if (key.message == WM_KEYDOWN) taker->keys.push_back(key.wParam);
    return key.wParam == taker->taken ? TRUE : FALSE;
  }

  HWND m_hPart = nullptr;
};

#endif  // MOSAICON_KVTOOLS_TESTING_KEY_TAKER_H_
