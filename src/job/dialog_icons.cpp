#include "job/dialog_icons.h"

#include "mfc/app.h"
#include "mfc/dpi.h"

namespace {

// At 96 dots per inch.
constexpr int kCaptionIcon = 16;
constexpr int kLargeIcon = 32;

}  // namespace

void DialogIcons::Show(HWND button, const char* name) {
  if (button == nullptr) return;
  const auto icon = reinterpret_cast<LPARAM>(Find(name, kButtonIcon, button));
  if (SendMessageA(button, BM_GETIMAGE, IMAGE_ICON, 0) == icon) return;
  SendMessageA(button, BM_SETIMAGE, IMAGE_ICON, icon);
  RedrawWindow(button, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
}

void DialogIcons::ShowInCaption(HWND window, const char* name) {
  for (const auto& [kind, size] : {std::pair(ICON_BIG, kLargeIcon), std::pair(ICON_SMALL, kCaptionIcon)}) {
    SendMessageA(window, WM_SETICON, static_cast<WPARAM>(kind),
                 reinterpret_cast<LPARAM>(Find(name, size, window)));
  }
}

HICON DialogIcons::Find(const char* name, int size, HWND window) {
  const int pixels = afx::Scale(size, afx::GetWindowDpi(window));
  const std::string text = IS_INTRESOURCE(name) ? "#" + std::to_string(LOWORD(name)) : name;
  Icon& icon = m_icons[{text, pixels}];
  if (icon == nullptr) {
    icon.reset(static_cast<HICON>(
        LoadImageA(AfxGetInstanceHandle(), name, IMAGE_ICON, pixels, pixels, LR_DEFAULTCOLOR)));
  }
  return icon.get();
}
