// The icons of a dialog and of its buttons, in the size of its monitor. User-interface thread.
#ifndef MOSAICON_JOB_DIALOG_ICONS_H_
#define MOSAICON_JOB_DIALOG_ICONS_H_

#include <map>
#include <string>

#include "mfc/wnd.h"

// Loads each icon once and owns them all.
class DialogIcons {
 public:
  DialogIcons() = default;
  ~DialogIcons() { DestroyAll(); }
  DialogIcons(const DialogIcons&) = delete;
  DialogIcons& operator=(const DialogIcons&) = delete;

  // Loads an icon ahead, in the size for this button.
  void Load(HWND button, const char* name) { Find(name, kButtonIcon, button); }
  // Shows the icon with this resource name (MAKEINTRESOURCE for a number) on a button, and redraws it.
  void Show(HWND button, const char* name);
  // Gives a window the two sizes of its own icon.
  void ShowInCaption(HWND window, const char* name);
  // Nothing that has one of them must be drawn any more.
  void DestroyAll();

 private:
  static constexpr int kButtonIcon = 16;  // pixels at 96 dots per inch

  using Key = std::pair<std::string, int>;  // name and size in pixels
  // size: at 96 dots per inch.
  HICON Find(const char* name, int size, HWND window);

  std::map<Key, HICON> m_icons;
};

#endif  // MOSAICON_JOB_DIALOG_ICONS_H_
