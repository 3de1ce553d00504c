// Test program: uses the window of the sender as a user would, from another process.
//   crashrpt_dialog_user TITLE STEP...
//   crashrpt_dialog_user screen    prints the size of the screen instead
// Steps: print (title, the numbers of the control with the focus and of the default button, and the
// controls, one per line: number, enabled, visible, text, checked), click:NUMBER, return:NUMBER (the key,
// with the focus there; it opens a link), escape, close, await-sending (until sending has begun),
// await-result (until something was sent or could not be), await-gone. Exit codes: 0 all done, 1 the window
// or what was awaited did not come in time.

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "crashrpt/crashsender_resource.h"

namespace {

constexpr int kPatience = 6000;  // times 100 ms

bool Await(const std::function<bool()>& condition) {
  for (int i = 0; i < kPatience; ++i) {
    if (condition()) return true;
    Sleep(100);
  }
  return false;
}

std::string TextOf(HWND window) {
  char text[8192] = "";
  SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  std::string line = text;
  for (char& c : line) {
    if (c == '\r' || c == '\n') c = '|';
  }
  return line;
}

HWND FocusOf(HWND dialog) {
  GUITHREADINFO info = {};
  info.cbSize = sizeof info;
  GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info);
  return info.hwndFocus;
}

void Print(HWND dialog) {
  std::printf("title\t%s\n", TextOf(dialog).c_str());
  std::printf("focus\t%d\n", GetDlgCtrlID(FocusOf(dialog)));
  std::printf("default\t%d\n", LOWORD(SendMessageA(dialog, DM_GETDEFID, 0, 0)));
  for (int number = IDC_WHAT_HAPPENED; number <= IDC_SHOW_REPORT; ++number) {
    const HWND control = GetDlgItem(dialog, number);
    const bool checked = SendMessageA(control, BM_GETCHECK, 0, 0) == BST_CHECKED;
    std::printf("%d\t%d\t%d\t%s\t%d\n", number, IsWindowEnabled(control), IsWindowVisible(control),
                TextOf(control).c_str(), checked);
  }
  std::fflush(stdout);
}

bool PressReturn(HWND dialog, HWND control) {
  PostMessageA(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
  if (!Await([dialog, control] { return FocusOf(dialog) == control; })) return false;
  return PostMessageA(control, WM_KEYDOWN, VK_RETURN, 1) != FALSE;
}

// As the keyboard does it: to the control that has the focus.
void PressEscape(HWND dialog) {
  PostMessageA(GetDlgItem(dialog, IDC_SEND), WM_KEYDOWN, VK_ESCAPE, 1);
}

bool Take(HWND dialog, const std::string& step) {
  if (step == "print") {
    Print(dialog);
    return true;
  }
  if (step == "escape") {
    PressEscape(dialog);
    return true;
  }
  if (step == "close") return PostMessageA(dialog, WM_SYSCOMMAND, SC_CLOSE, 0) != FALSE;
  if (step == "await-gone") return Await([dialog] { return !IsWindow(dialog); });
  const auto result = [dialog] { return TextOf(GetDlgItem(dialog, IDC_RESULT)); };
  if (step == "await-sending") return Await([&] { return !result().empty(); });
  if (step == "await-result") {
    return Await([&] { return !result().empty() && result() != "Sending the report..."; });
  }
  const size_t colon = step.find(':');
  if (colon == std::string::npos) return false;
  const std::string what = step.substr(0, colon);
  const HWND control = GetDlgItem(dialog, std::atoi(step.c_str() + colon + 1));
  if (what == "return") return PressReturn(dialog, control);
  return what == "click" && PostMessageA(control, BM_CLICK, 0, 0) != FALSE;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 1;
  if (std::string(argv[1]) == "screen") {
    std::printf("%d %d\n", GetSystemMetrics(SM_CXVIRTUALSCREEN), GetSystemMetrics(SM_CYVIRTUALSCREEN));
    return 0;
  }
  HWND dialog = nullptr;
  const auto isShown = [&dialog, argv] {
    dialog = FindWindowA("#32770", argv[1]);
    return dialog != nullptr && IsWindowVisible(dialog);
  };
  if (!Await(isShown)) return 1;
  for (int i = 2; i < argc; ++i) {
    if (!Take(dialog, argv[i])) return 1;
  }
  return 0;
}
