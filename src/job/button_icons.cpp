#include "job/button_icons.h"

#include "mfc/app.h"
#include "mfc/dpi.h"

namespace {

constexpr int kIconSize = 16;  // at 96 dots per inch

}  // namespace

void ButtonIcons::Show(HWND button, const char* name) {
  if (button == nullptr) return;
  const auto icon = reinterpret_cast<LPARAM>(Find(button, name));
  if (SendMessageA(button, BM_GETIMAGE, IMAGE_ICON, 0) == icon) return;
  SendMessageA(button, BM_SETIMAGE, IMAGE_ICON, icon);
  RedrawWindow(button, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
}

HICON ButtonIcons::Find(HWND button, const char* name) {
  const int size = afx::Scale(kIconSize, afx::GetWindowDpi(button));
  const std::string text = IS_INTRESOURCE(name) ? "#" + std::to_string(LOWORD(name)) : name;
  HICON& icon = m_icons[{text, size}];
  if (icon == nullptr) {
    icon =
        static_cast<HICON>(LoadImageA(AfxGetInstanceHandle(), name, IMAGE_ICON, size, size, LR_DEFAULTCOLOR));
  }
  return icon;
}

void ButtonIcons::DestroyAll() {
  for (const auto& [key, icon] : m_icons) {
    if (icon != nullptr) DestroyIcon(icon);
  }
  m_icons.clear();
}
