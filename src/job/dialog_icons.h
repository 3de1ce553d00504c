// The icons of a dialog and of its buttons, in the size of its monitor. User-interface thread.
#ifndef MOSAICON_JOB_DIALOG_ICONS_H_
#define MOSAICON_JOB_DIALOG_ICONS_H_

#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "mfc/wnd.h"

// Loads each icon once and owns them all.
class DialogIcons {
 public:
  // Loads an icon ahead, in the size for this button.
  void Load(HWND button, const char* name) { Find(name, kButtonIcon, button); }
  // Shows the icon with this resource name (MAKEINTRESOURCE for a number) on a button, and redraws it.
  void Show(HWND button, const char* name);
  // Gives a window the two sizes of its own icon.
  void ShowInCaption(HWND window, const char* name);
  // Nothing that has one of them must be drawn any more.
  void DestroyAll() { m_icons.clear(); }

 private:
  static constexpr int kButtonIcon = 16;  // pixels at 96 dots per inch

  struct IconDestroyer {
    void operator()(HICON icon) const { DestroyIcon(icon); }
  };
  using Icon = std::unique_ptr<std::remove_pointer_t<HICON>, IconDestroyer>;
  using Key = std::pair<std::string, int>;  // name and size in pixels
  // size: at 96 dots per inch.
  HICON Find(const char* name, int size, HWND window);

  std::map<Key, Icon> m_icons;
};

#endif  // MOSAICON_JOB_DIALOG_ICONS_H_
