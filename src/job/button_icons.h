// The icons on the buttons of a dialog, in the size of its monitor. User-interface thread.
#ifndef MOSAICON_JOB_BUTTON_ICONS_H_
#define MOSAICON_JOB_BUTTON_ICONS_H_

#include <map>
#include <string>

#include "mfc/wnd.h"

// Loads each icon once and owns them all.
class ButtonIcons {
 public:
  ButtonIcons() = default;
  ~ButtonIcons() { DestroyAll(); }
  ButtonIcons(const ButtonIcons&) = delete;
  ButtonIcons& operator=(const ButtonIcons&) = delete;

  // Loads an icon ahead, in the size for this button.
  void Load(HWND button, const char* name) { Find(button, name); }
  // Shows the icon with this resource name (MAKEINTRESOURCE for a number) on a button, and redraws it.
  void Show(HWND button, const char* name);
  // The buttons must not be drawn any more, or get another icon first.
  void DestroyAll();

 private:
  using Key = std::pair<std::string, int>;  // name and size in pixels
  HICON Find(HWND button, const char* name);

  std::map<Key, HICON> m_icons;
};

#endif  // MOSAICON_JOB_BUTTON_ICONS_H_
